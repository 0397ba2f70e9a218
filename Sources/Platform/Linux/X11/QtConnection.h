// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

struct xcb_connection_t;

namespace platform::desktop {

/// Qt's own connection to the X server, for what Qt's windows need and Qt does not offer. It stays Qt's: never
/// disconnect it. Null before the application object exists and on a display that is not X11. Main thread.
xcb_connection_t *qtConnection();

} // namespace platform::desktop
