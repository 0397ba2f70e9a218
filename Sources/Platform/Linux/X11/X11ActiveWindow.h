// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/ActiveWindow.h"
#include "Platform/Linux/X11/X11Connection.h"

#include <optional>

namespace platform::desktop {

/// Which window is active. Asked of the server each time: a notice of a change may still be on its way. Main thread
/// only.
class X11ActiveWindow {
  public:
    explicit X11ActiveWindow(X11Connection &connection) : m_connection(connection) {}

    /// Absent when no window is active, or no window manager tells.
    [[nodiscard]] std::optional<ActiveWindow> ask();

  private:
    X11Connection &m_connection;
    ActiveWindow m_last;
};

} // namespace platform::desktop
