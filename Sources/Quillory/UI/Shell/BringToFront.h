// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

namespace quillory::ui {

/// Shows a window in front of all others, with the keyboard focus, as the user asked for it.
void bringToFront(QWidget &window);

} // namespace quillory::ui
