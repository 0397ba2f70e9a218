// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/Clipboard/X11SelectionOwner.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace platform::desktop {

namespace {

/// Content up to this size goes out in one piece, larger content in portions of this size: small enough not to hold up
/// the main thread, large enough for a picture to need few of them. A multiple of 4.
constexpr qsizetype portionBytes = 256LL * 1024;
/// A requestor that has not fetched its portion for this long has hung or lost interest.
constexpr std::chrono::milliseconds longestStall{5000};
/// Pairs of target and property in one request; real requests have a handful.
constexpr std::uint32_t maximumPairs = 256;
/// Large contents under way at once; real requestors fetch a handful.
constexpr std::size_t maximumSendings = 64;

} // namespace

X11SelectionOwner::X11SelectionOwner(X11Connection &connection, xcb_atom_t selection)
    : m_connection(connection), m_selection(selection) {
    m_reaper.setInterval(longestStall / 4);
    m_reaper.callOnTimeout([this] { dropStalled(); });
    m_events = m_connection.onEvent([this](const xcb_generic_event_t &event) { handle(event); });
}

bool X11SelectionOwner::claim() {
    m_since = m_connection.serverTime();
    xcb_set_selection_owner(m_connection.get(), m_connection.window(), m_selection, m_since);
    return m_connection.ownerOf(m_selection) == m_connection.window();
}

void X11SelectionOwner::hold(std::vector<X11SelectionValue> values) {
    m_isOwner = true;
    m_values = std::move(values);
}

void X11SelectionOwner::lose() {
    m_isOwner = false;
    m_values.clear();
}

void X11SelectionOwner::giveUp(xcb_timestamp_t time) {
    lose();
    xcb_set_selection_owner(m_connection.get(), XCB_NONE, m_selection, time);
    m_connection.flush();
}

void X11SelectionOwner::handOver(std::chrono::milliseconds longestWait) {
    const xcb_atom_t manager = m_connection.atom("CLIPBOARD_MANAGER");
    if (!m_isOwner || m_values.empty() || m_connection.ownerOf(manager) == XCB_NONE) {
        return;
    }
    bool answered = false;
    const auto watch = m_connection.onEvent([&](const xcb_generic_event_t &event) {
        answered = answered || (eventType(event) == XCB_SELECTION_NOTIFY &&
                                eventAs<xcb_selection_notify_event_t>(event).selection == manager);
    });
    const xcb_atom_t property = m_connection.atom("QUILLORY_SAVE_TARGETS");
    std::vector<xcb_atom_t> wanted;
    std::ranges::transform(m_values, std::back_inserter(wanted), &X11SelectionValue::target);
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, m_connection.window(), property, XCB_ATOM_ATOM, 32,
                        static_cast<std::uint32_t>(wanted.size()), wanted.data());
    xcb_convert_selection(m_connection.get(), m_connection.window(), manager, m_connection.atom("SAVE_TARGETS"),
                          property, m_connection.serverTime());
    QElapsedTimer waited;
    waited.start();
    while (!answered && !m_connection.isBroken() && !waited.hasExpired(longestWait.count())) {
        const auto left = longestWait - std::chrono::milliseconds(waited.elapsed());
        m_connection.dispatchWithin(static_cast<int>(left.count()));
    }
}

void X11SelectionOwner::handle(const xcb_generic_event_t &event) {
    switch (eventType(event)) {
    case XCB_SELECTION_REQUEST:
        serve(eventAs<xcb_selection_request_event_t>(event));
        break;
    case XCB_SELECTION_CLEAR:
        if (const auto &clear = eventAs<xcb_selection_clear_event_t>(event);
            clear.selection == m_selection && clear.time > m_since) {
            lose(); // an older event is about an ownership that has been renewed since
        }
        break;
    case XCB_PROPERTY_NOTIFY:
        if (const auto &change = eventAs<xcb_property_notify_event_t>(event);
            change.state == XCB_PROPERTY_DELETE && change.window != m_connection.window()) {
            sendNext(change.window, change.atom);
        }
        break;
    case XCB_DESTROY_NOTIFY:
        std::erase_if(m_sending, [gone = eventAs<xcb_destroy_notify_event_t>(event).window](const Sending &one) {
            return one.requestor == gone;
        });
        break;
    default:
        break;
    }
}

void X11SelectionOwner::serve(const xcb_selection_request_event_t &request) {
    if (request.selection != m_selection || !m_isOwner) {
        answer(request, XCB_NONE);
    } else if (request.target == m_connection.atom("MULTIPLE")) {
        serveMultiple(request);
    } else {
        // Requestors that follow an old convention leave the choice of the property to the owner.
        const xcb_atom_t property = request.property == XCB_NONE ? request.target : request.property;
        const bool converted = convert(request.requestor, request.target, property);
        answer(request, converted ? property : static_cast<xcb_atom_t>(XCB_NONE));
    }
}

void X11SelectionOwner::serveMultiple(const xcb_selection_request_event_t &request) {
    if (request.property == XCB_NONE) {
        answer(request, XCB_NONE);
        return;
    }
    const auto question = xcb_get_property(m_connection.get(), 0, request.requestor, request.property,
                                           XCB_GET_PROPERTY_TYPE_ANY, 0, maximumPairs * 2);
    const auto wanted = m_connection.reply(xcb_get_property_reply, question);
    if (!wanted || wanted->format != 32) {
        answer(request, XCB_NONE);
        return;
    }
    auto *atoms = static_cast<xcb_atom_t *>(xcb_get_property_value(wanted.get()));
    for (std::uint32_t i = 0; i + 1 < wanted->value_len; i += 2) {
        if (!convert(request.requestor, atoms[i], atoms[i + 1])) {
            atoms[i + 1] = XCB_NONE;
        }
    }
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, request.requestor, request.property, wanted->type,
                        32, wanted->value_len, atoms);
    answer(request, request.property);
}

void X11SelectionOwner::answer(const xcb_selection_request_event_t &request, xcb_atom_t property) {
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = property;
    // xcb sends 32 bytes, more than this type has.
    std::array<char, 32> event{};
    std::memcpy(event.data(), &notify, sizeof notify);
    xcb_send_event(m_connection.get(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, event.data());
    m_connection.flush();
}

bool X11SelectionOwner::convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
    const auto putValues = [&](xcb_atom_t type, const std::vector<std::uint32_t> &values) {
        xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, requestor, property, type, 32,
                            static_cast<std::uint32_t>(values.size()), values.data());
        return true;
    };
    if (property == XCB_NONE) {
        return false;
    }
    if (target == m_connection.atom("TARGETS")) {
        std::vector targets{target, m_connection.atom("TIMESTAMP"), m_connection.atom("MULTIPLE")};
        std::ranges::transform(m_values, std::back_inserter(targets), &X11SelectionValue::target);
        return putValues(XCB_ATOM_ATOM, targets);
    }
    if (target == m_connection.atom("TIMESTAMP")) {
        return putValues(XCB_ATOM_INTEGER, {m_since});
    }
    const auto value = std::ranges::find(m_values, target, &X11SelectionValue::target);
    if (value == m_values.end()) {
        return false;
    }
    ++m_timesServed;
    return send(requestor, property, *value);
}

bool X11SelectionOwner::send(xcb_window_t requestor, xcb_atom_t property, const X11SelectionValue &value) {
    const qsizetype size = value.data.size();
    if (size <= portionBytes) {
        put(requestor, property, value, value.data.constData(), size);
        return true;
    }
    std::erase_if(m_sending,
                  [&](const Sending &old) { return old.requestor == requestor && old.property == property; });
    if (m_sending.size() >= maximumSendings) {
        return false;
    }
    auto listening =
        m_connection.selectEvents(requestor, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const auto announced = static_cast<std::uint32_t>(size);
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, requestor, property, m_connection.atom("INCR"), 32,
                        1, &announced);
    m_sending.push_back({requestor, property, value, 0, std::move(listening), {}});
    m_sending.back().sinceProgress.start();
    m_reaper.start();
    return true;
}

void X11SelectionOwner::sendNext(xcb_window_t requestor, xcb_atom_t property) {
    const auto sending = std::ranges::find_if(
        m_sending, [&](const Sending &one) { return one.requestor == requestor && one.property == property; });
    if (sending == m_sending.end()) {
        return;
    }
    const QByteArray &data = sending->value.data;
    const qsizetype size = std::min(portionBytes, data.size() - sending->offset);
    put(requestor, property, sending->value, data.constData() + sending->offset, size);
    sending->offset += size;
    sending->sinceProgress.restart();
    if (size == 0) {
        m_sending.erase(sending);
    }
}

void X11SelectionOwner::put(xcb_window_t requestor, xcb_atom_t property, const X11SelectionValue &value,
                            const char *data, qsizetype size) {
    const auto count = static_cast<std::uint32_t>(size / (value.format / 8));
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, requestor, property, value.type, value.format, count,
                        data);
}

void X11SelectionOwner::dropStalled() {
    std::erase_if(m_sending, [](const Sending &one) { return one.sinceProgress.hasExpired(longestStall.count()); });
    if (m_sending.empty()) {
        m_reaper.stop();
    }
}

} // namespace platform::desktop
