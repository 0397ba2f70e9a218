// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/X11ActiveWindow.h"

namespace platform::desktop {

std::optional<ActiveWindow> X11ActiveWindow::ask() {
    const auto active =
        m_connection.values(m_connection.askValues(m_connection.root(), m_connection.atom("_NET_ACTIVE_WINDOW")));
    if (active.empty() || active.front() == XCB_NONE) {
        m_last = {};
        return std::nullopt;
    }
    // A window never changes its process, but it may be late to name it.
    if (active.front() != m_last.id || m_last.pid == 0) {
        const auto pid = m_connection.values(m_connection.askValues(active.front(), m_connection.atom("_NET_WM_PID")));
        m_last = {active.front(), pid.empty() ? 0 : static_cast<qint32>(pid.front())};
    }
    return m_last;
}

} // namespace platform::desktop
