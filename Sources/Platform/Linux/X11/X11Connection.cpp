// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/X11Connection.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QSocketNotifier>

#include <algorithm>
#include <poll.h>

namespace platform::desktop {

namespace {

/// Lists of windows or atoms are far shorter; more is nonsense from a broken program.
constexpr std::uint32_t maximumValues = 65'536;

const xcb_screen_t *screenOf(xcb_connection_t *connection, int number) {
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; number > 0 && screens.rem > 1; --number) {
        xcb_screen_next(&screens);
    }
    return screens.data;
}

} // namespace

std::unique_ptr<X11Connection> X11Connection::open(const QByteArray &display) {
    int screenNumber = 0;
    xcb_connection_t *connection = xcb_connect(display.isEmpty() ? nullptr : display.constData(), &screenNumber);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        return nullptr;
    }
    return std::unique_ptr<X11Connection>(new X11Connection(connection, screenNumber));
}

X11Connection::X11Connection(xcb_connection_t *connection, int screenNumber)
    : m_connection(connection), m_screenNumber(screenNumber), m_screen(screenOf(connection, screenNumber)),
      m_window(xcb_generate_id(connection)) {
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    m_eventMasks.emplace(m_window, events);
    m_timeProperty = atom("QUILLORY_TIME");
}

X11Connection::~X11Connection() {
    m_notifier.reset();
    xcb_disconnect(m_connection);
}

void X11Connection::watch() {
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, &m_context, [this] { dispatch(); });
    // xcb reads events while it waits for an answer; the socket is silent about those.
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &m_context, [this] {
        readQueued();
        handOut();
    });
}

xcb_atom_t X11Connection::atom(const QByteArray &name) {
    const auto known = m_atoms.find(name);
    if (known != m_atoms.end()) {
        return known->second;
    }
    const auto length = static_cast<std::uint16_t>(name.size());
    const auto answer = reply(xcb_intern_atom_reply, xcb_intern_atom(m_connection, 0, length, name.constData()));
    return m_atoms[name] = answer ? answer->atom : static_cast<xcb_atom_t>(XCB_NONE);
}

std::vector<QString> X11Connection::atomNames(const std::vector<xcb_atom_t> &atoms) {
    std::vector<std::pair<xcb_atom_t, xcb_get_atom_name_cookie_t>> questions;
    for (const xcb_atom_t atom : atoms) {
        if (!m_atomNames.contains(atom)) {
            questions.emplace_back(atom, xcb_get_atom_name(m_connection, atom));
        }
    }
    for (const auto &[atom, cookie] : questions) {
        if (const auto answer = reply(xcb_get_atom_name_reply, cookie)) {
            m_atomNames[atom] =
                QString::fromLatin1(xcb_get_atom_name_name(answer.get()), xcb_get_atom_name_name_length(answer.get()));
        }
    }
    std::vector<QString> names;
    for (const xcb_atom_t atom : atoms) {
        const auto known = m_atomNames.find(atom);
        names.push_back(known == m_atomNames.end() ? QString() : known->second);
    }
    return names;
}

bool X11Connection::has(xcb_extension_t *extension) const {
    const xcb_query_extension_reply_t *data = xcb_get_extension_data(m_connection, extension);
    return data != nullptr && data->present != 0;
}

std::uint8_t X11Connection::firstEvent(xcb_extension_t *extension) const {
    return has(extension) ? xcb_get_extension_data(m_connection, extension)->first_event : 0;
}

RegistrationHandle X11Connection::onEvent(EventHandler handler) {
    auto shared = std::make_shared<EventHandler>(std::move(handler));
    m_handlers.push_back(shared);
    return std::make_unique<Registration>([this, shared] {
        std::erase(m_handlers, shared);
        *shared = nullptr; // perhaps an event is being handed out, from a copy of the list
    });
}

RegistrationHandle X11Connection::selectEvents(xcb_window_t window, std::uint32_t mask) {
    const auto selected = m_eventMasks.emplace(window, mask);
    sendEventMask(window);
    return std::make_unique<Registration>([this, window, selected] {
        m_eventMasks.erase(selected);
        sendEventMask(window);
    });
}

void X11Connection::sendEventMask(xcb_window_t window) {
    std::uint32_t mask = XCB_EVENT_MASK_NO_EVENT;
    const auto [first, last] = m_eventMasks.equal_range(window);
    std::for_each(first, last, [&mask](const auto &selected) { mask |= selected.second; });
    // If the window is gone by now, the error is ignored.
    xcb_change_window_attributes(m_connection, window, XCB_CW_EVENT_MASK, &mask);
}

xcb_get_property_cookie_t X11Connection::askValues(xcb_window_t window, xcb_atom_t property) const {
    return xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, maximumValues);
}

std::vector<std::uint32_t> X11Connection::values(xcb_get_property_cookie_t cookie) const {
    const auto answer = reply(xcb_get_property_reply, cookie);
    if (!answer || answer->format != 32) {
        return {};
    }
    const auto *first = static_cast<const std::uint32_t *>(xcb_get_property_value(answer.get()));
    return {first, first + answer->value_len};
}

xcb_window_t X11Connection::ownerOf(xcb_atom_t selection) const {
    const auto found = reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(m_connection, selection));
    return found ? found->owner : static_cast<xcb_window_t>(XCB_NONE);
}

void X11Connection::sync() const {
    (void)reply(xcb_get_input_focus_reply, xcb_get_input_focus(m_connection));
}

xcb_timestamp_t X11Connection::serverTime() {
    // Appending nothing to a property changes nothing, yet causes an event that carries the time.
    xcb_change_property(m_connection, XCB_PROP_MODE_APPEND, m_window, m_timeProperty, XCB_ATOM_INTEGER, 32, 0, nullptr);
    sync();
    const auto told = takeEvents([this](const xcb_generic_event_t &event) {
        const auto &change = eventAs<xcb_property_notify_event_t>(event);
        return eventType(event) == XCB_PROPERTY_NOTIFY && change.window == m_window && change.atom == m_timeProperty;
    });
    return told.empty() ? XCB_CURRENT_TIME : eventAs<xcb_property_notify_event_t>(*told.back()).time;
}

std::vector<X11Event> X11Connection::takeEvents(const std::function<bool(const xcb_generic_event_t &)> &predicate) {
    readQueued();
    const auto rest = std::stable_partition(m_events.begin(), m_events.end(),
                                            [&](const X11Event &event) { return !predicate(*event); });
    std::vector<X11Event> taken(std::make_move_iterator(rest), std::make_move_iterator(m_events.end()));
    m_events.erase(rest, m_events.end());
    return taken;
}

void X11Connection::dispatch() {
    while (X11Event event{xcb_poll_for_event(m_connection)}) {
        m_events.push_back(std::move(event));
    }
    handOut();
    if (isBroken()) {
        lose();
    }
}

void X11Connection::dispatchWithin(int milliseconds) {
    flush();
    readQueued();
    if (m_events.empty()) {
        pollfd input{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        poll(&input, 1, milliseconds);
    }
    dispatch();
}

void X11Connection::readQueued() {
    while (X11Event event{xcb_poll_for_queued_event(m_connection)}) {
        m_events.push_back(std::move(event));
    }
}

void X11Connection::handOut() {
    while (!m_events.empty()) {
        const X11Event event = std::move(m_events.front());
        m_events.pop_front();
        const auto handlers = m_handlers;
        for (const auto &handler : handlers) {
            if (const EventHandler call = *handler) {
                call(*event);
            }
        }
        readQueued();
    }
    flush();
}

void X11Connection::lose() {
    if (!m_notifier || !m_notifier->isEnabled()) {
        return;
    }
    // A closed socket stays readable for ever.
    m_notifier->setEnabled(false);
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [] { QCoreApplication::exit(1); }, Qt::QueuedConnection);
}

} // namespace platform::desktop
