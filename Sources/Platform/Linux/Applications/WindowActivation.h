// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

struct xcb_connection_t;

namespace platform::desktop {

/// Asks the window manager to bring the topmost window of a process to the front and to give it the keyboard focus.
/// Does nothing when a window of the process is the active one already, or when it has none. Waits for the X server.
void activateWindowOf(xcb_connection_t *connection, qint32 pid);

} // namespace platform::desktop
