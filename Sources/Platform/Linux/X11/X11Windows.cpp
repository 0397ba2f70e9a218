// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/X11Windows.h"

#include <algorithm>

namespace platform::desktop {

std::optional<ActiveWindow> X11Windows::active() {
    // Asked for and not followed by events: a change may still be on its way.
    const auto active = m_connection.values(m_connection.root(), "_NET_ACTIVE_WINDOW");
    if (active.empty() || active.front() == XCB_NONE) {
        m_last = {};
        return std::nullopt;
    }
    // A window never changes its process, but it may name it late.
    if (active.front() != m_last.id || m_last.pid == 0) {
        const auto pid = m_connection.values(active.front(), "_NET_WM_PID");
        m_last = {active.front(), pid.empty() ? 0 : static_cast<qint32>(pid.front())};
    }
    return m_last;
}

/// The topmost first.
std::vector<xcb_window_t> X11Windows::windowsOf(qint32 pid) {
    auto windows = m_connection.values(m_connection.root(), "_NET_CLIENT_LIST_STACKING");
    std::ranges::reverse(windows);
    std::vector<xcb_get_property_cookie_t> questions;
    for (const xcb_window_t window : windows) {
        questions.push_back(m_connection.askValues(window, m_connection.atom("_NET_WM_PID")));
    }
    std::vector<xcb_window_t> found;
    for (std::size_t i = 0; i < windows.size(); ++i) {
        if (m_connection.values(questions[i]) == std::vector{static_cast<std::uint32_t>(pid)}) {
            found.push_back(windows[i]);
        }
    }
    return found;
}

void X11Windows::activate(qint32 pid) {
    const auto windows = windowsOf(pid);
    const auto active = m_connection.values(m_connection.root(), "_NET_ACTIVE_WINDOW");
    if (windows.empty() || (!active.empty() && std::ranges::find(windows, active.front()) != windows.end())) {
        return;
    }
    // As a pager asks on the user's behalf; an ordinary application's request may be ignored.
    constexpr std::uint32_t fromPager = 2;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = windows.front();
    event.type = m_connection.atom("_NET_ACTIVE_WINDOW");
    event.data.data32[0] = fromPager;
    event.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(m_connection.get(), 0, m_connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&event));
    m_connection.flush();
}

} // namespace platform::desktop
