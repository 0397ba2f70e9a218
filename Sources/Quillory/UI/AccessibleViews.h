// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

namespace quillory::ui {

/// Tells assistive tools what our own views are. Once for the whole program; further calls do nothing.
void installAccessibleViews();

} // namespace quillory::ui
