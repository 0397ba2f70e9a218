// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

namespace platform {
class Workspace;
}

/// What the program's own windows have in common.
namespace quillory::ui {

/// Shows a window in front of all others, with the keyboard focus, as the user asked for it. The workspace outlives the
/// window.
void bringToFront(QWidget &window, platform::Workspace &workspace);

/// Moves a window to the middle of the screen that the pointer is on, and makes it smaller where it would fill that.
void placeAtPointer(QWidget &window);

/// Has Esc and Control-W close a window.
void closeByKeys(QWidget &window);

} // namespace quillory::ui
