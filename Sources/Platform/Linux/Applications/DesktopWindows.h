// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <cstdint>
#include <optional>

namespace platform::desktop {

/// The window that has the keyboard, according to the window manager.
struct ActiveWindow {
    /// Tells this window from others that are open; nothing else is to be read from it.
    std::uint32_t id = 0;
    /// The process that shows the window, according to the window itself (inside a sandbox that may be another number
    /// than outside); 0 when the window does not say.
    qint32 pid = 0;
};

/// The windows of all programs, through the desktop's window system. Main thread only; may wait for its server.
class DesktopWindows {
  public:
    virtual ~DesktopWindows() = default;
    /// Asked anew each time. Absent when no window is active, or nobody can tell.
    [[nodiscard]] virtual std::optional<ActiveWindow> active() = 0;
    /// Brings the topmost window of a process to the front and gives it the keyboard focus. Does nothing when a window
    /// of the process is active already, or when it has none.
    virtual void activate(qint32 pid) = 0;
};

} // namespace platform::desktop
