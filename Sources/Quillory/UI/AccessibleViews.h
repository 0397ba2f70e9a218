// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace quillory::ui {

/// Tells assistive tools what our own views are. Once for the whole program; further calls do nothing.
void installAccessibleViews();

} // namespace quillory::ui
