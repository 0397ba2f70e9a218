// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/Panel/Compositor.h"

#include "Platform/Linux/X11/QtConnection.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <cstdlib>
#include <memory>

namespace platform::desktop {

namespace {

template <class Reply> using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

// A compositor shows that it runs by owning this selection of its screen.
xcb_atom_t selectionAtom(xcb_connection_t *connection) {
    int screen = 0;
    char *host = nullptr;
    int display = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen) != 0) {
        std::free(host);
    }
    const QByteArray name = "_NET_WM_CM_S" + QByteArray::number(screen);
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.constData());
    const ReplyPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

bool hasOwner(xcb_connection_t *connection, xcb_atom_t selection) {
    const auto cookie = xcb_get_selection_owner(connection, selection);
    const ReplyPointer<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, cookie, nullptr), &std::free);
    return reply && reply->owner != XCB_WINDOW_NONE;
}

} // namespace

Compositor::Compositor(std::function<void()> onChange) : m_onChange(std::move(onChange)) {
    xcb_connection_t *connection = qtConnection();
    const xcb_query_extension_reply_t *xfixes =
        connection != nullptr ? xcb_get_extension_data(connection, &xcb_xfixes_id) : nullptr;
    if (xfixes == nullptr || xfixes->present == 0) {
        return;
    }
    m_selectionEvent = static_cast<std::uint8_t>(xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    m_selection = selectionAtom(connection);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_xfixes_select_selection_input(connection, root, m_selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    // Asked after the events are on their way, so that no change falls between.
    m_running = hasOwner(connection, m_selection);
    QCoreApplication::instance()->installNativeEventFilter(this);
}

Compositor::~Compositor() {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeNativeEventFilter(this);
    }
}

bool Compositor::nativeEventFilter(const QByteArray & /*eventType*/, void *message, qintptr * /*result*/) {
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if ((event->response_type & 0x7F) != m_selectionEvent) {
        return false;
    }
    const auto *change = static_cast<const xcb_xfixes_selection_notify_event_t *>(message);
    const bool running = change->owner != XCB_WINDOW_NONE;
    if (change->selection == m_selection && running != m_running) {
        m_running = running;
        m_onChange();
    }
    return false;
}

} // namespace platform::desktop
