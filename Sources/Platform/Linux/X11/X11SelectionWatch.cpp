// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/X11SelectionWatch.h"

namespace platform::desktop {

X11SelectionWatch::X11SelectionWatch(X11Connection &connection, const QByteArray &selection, Handler changed)
    : m_connection(connection), m_selection(connection.atom(selection)), m_changed(std::move(changed)) {
    if (!connection.has(&xcb_xfixes_id)) {
        return;
    }
    m_eventType = connection.firstEvent(&xcb_xfixes_id) + XCB_XFIXES_SELECTION_NOTIFY;
    (void)connection.reply(xcb_xfixes_query_version_reply, xcb_xfixes_query_version(connection.get(), 1, 0));
    xcb_xfixes_select_selection_input(connection.get(), connection.window(), m_selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    m_events = connection.onEvent([this](const xcb_generic_event_t &event) {
        if (isChange(event)) {
            m_changed(eventAs<Change>(event));
        }
    });
}

bool X11SelectionWatch::isChange(const xcb_generic_event_t &event) const {
    return eventType(event) == m_eventType && eventAs<Change>(event).selection == m_selection;
}

void X11SelectionWatch::takeChanges() {
    for (const X11Event &event : m_connection.takeEvents([this](const auto &one) { return isChange(one); })) {
        m_changed(eventAs<Change>(*event));
    }
}

} // namespace platform::desktop
