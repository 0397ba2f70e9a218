// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/X11Instance.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <utility>

namespace platform::desktop {

namespace {

xcb_atom_t selectionOf(X11Connection &connection, X11Instance::Kind kind) {
    return connection.atom(kind == X11Instance::Kind::program ? "_QUILLORY_INSTANCE" : "_QUILLORY_SETUP");
}

xcb_window_t instanceOn(X11Connection &connection, X11Instance::Kind kind) {
    const xcb_atom_t selection = selectionOf(connection, kind);
    const auto found =
        connection.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(connection.get(), selection));
    return found ? found->owner : xcb_window_t{XCB_NONE};
}

void send(X11Connection &connection, xcb_window_t to, const char *message) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = to;
    event.type = connection.atom(message);
    event.data.data32[0] = connection.window();
    xcb_send_event(connection.get(), 0, to, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&event));
    connection.flush();
}

bool isMessage(X11Connection &connection, const xcb_generic_event_t &event, const char *message) {
    return eventType(event) == XCB_CLIENT_MESSAGE &&
           eventAs<xcb_client_message_event_t>(event).type == connection.atom(message);
}

constexpr auto summons = "_QUILLORY_SUMMONS";
constexpr auto coming = "_QUILLORY_COMING";

} // namespace

std::unique_ptr<X11Instance> X11Instance::become(X11Connection &connection, Kind kind) {
    // Two starts at once: nobody else may come between the question and the claim.
    xcb_grab_server(connection.get());
    const bool isFree = instanceOn(connection, kind) == XCB_NONE;
    if (isFree) {
        xcb_set_selection_owner(connection.get(), connection.window(), selectionOf(connection, kind), XCB_CURRENT_TIME);
    }
    xcb_ungrab_server(connection.get());
    connection.flush();
    return isFree ? std::unique_ptr<X11Instance>(new X11Instance(connection)) : nullptr;
}

bool X11Instance::isThere(X11Connection &connection, Kind kind) {
    return instanceOn(connection, kind) != XCB_NONE;
}

bool X11Instance::summon(X11Connection &connection, std::chrono::milliseconds longestWait, Kind kind) {
    const xcb_window_t instance = instanceOn(connection, kind);
    if (instance == XCB_NONE) {
        return false;
    }
    bool answered = false;
    const auto watch = connection.onEvent(
        [&](const xcb_generic_event_t &event) { answered = answered || isMessage(connection, event, coming); });
    send(connection, instance, summons);
    const QDeadlineTimer deadline(longestWait);
    // An instance that ends meanwhile says nothing any more.
    while (!answered && !deadline.hasExpired() && instanceOn(connection, kind) == instance) {
        constexpr qint64 lookAgain = 100;
        connection.dispatchWithin(static_cast<int>(std::min(lookAgain, deadline.remainingTime()))); // never negative
    }
    return answered;
}

void X11Instance::onSummons(std::function<void()> handler) {
    m_events = m_connection.onEvent([this, handler = std::move(handler)](const xcb_generic_event_t &event) {
        if (isMessage(m_connection, event, summons)) {
            answer(eventAs<xcb_client_message_event_t>(event));
            handler();
        }
    });
}

void X11Instance::answer(const xcb_client_message_event_t &message) {
    send(m_connection, message.data.data32[0], coming);
}

} // namespace platform::desktop
