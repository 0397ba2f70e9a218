// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

namespace platform {
class Workspace;
}

namespace quillory::ui {

/// Shows a window in front of all others, with the keyboard focus, as the user asked for it. The workspace outlives the
/// window.
void bringToFront(QWidget &window, platform::Workspace &workspace);

} // namespace quillory::ui
