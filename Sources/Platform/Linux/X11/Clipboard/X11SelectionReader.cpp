// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/Clipboard/X11SelectionReader.h"

#include <algorithm>
#include <array>

namespace platform::desktop {

namespace {

/// The longest silence of the owner, and the longest reading overall: the user has pressed a key and waits. Large
/// content that keeps coming gets more time, since what is not read is lost.
constexpr std::chrono::milliseconds longestSilence{750};
constexpr std::chrono::milliseconds longestReading{1500};
constexpr std::chrono::milliseconds longestLargeReading{4000};
/// A type that would make the content larger than this is left out.
constexpr qsizetype maximumBytes = 256LL * 1024 * 1024;
/// Programs offer a dozen types, some of them forty image formats, and a few targets that are no content.
constexpr std::size_t maximumTypes = 128;
constexpr std::uint32_t maximumOffers = 256;
/// Content is read in pieces, so that no single answer holds up the main thread.
constexpr std::uint32_t pieceBytes = 256 * 1024;
/// A clipboard that changes hands more often than this during one reading is not chased further.
constexpr int maximumAttempts = 3;

/// Targets that are questions or orders to the owner, not content.
constexpr std::array<QLatin1StringView, 7> notContent{
    QLatin1StringView("TARGETS"),        QLatin1StringView("TIMESTAMP"), QLatin1StringView("MULTIPLE"),
    QLatin1StringView("SAVE_TARGETS"),   QLatin1StringView("DELETE"),    QLatin1StringView("INSERT_SELECTION"),
    QLatin1StringView("INSERT_PROPERTY")};

bool isContent(const QString &target) {
    return !target.isEmpty() && std::ranges::find(notContent, target) == notContent.end();
}

} // namespace

X11SelectionReader::X11SelectionReader(X11Connection &connection, xcb_atom_t selection, Done done)
    : m_connection(connection), m_selection(selection), m_done(std::move(done)) {
    m_stall.setSingleShot(true);
    m_stall.callOnTimeout([this] { finish(false); });
    m_deadline.setSingleShot(true);
    m_deadline.callOnTimeout([this] { handleDeadline(); });
    m_events = m_connection.onEvent([this](const xcb_generic_event_t &event) { handle(event); });
    m_deadline.start(longestReading);
    start();
}

X11SelectionReader::~X11SelectionReader() {
    xcb_destroy_window(m_connection.get(), m_window);
    m_connection.flush();
}

void X11SelectionReader::start() {
    ++m_attempts;
    m_transfers.clear();
    m_total = 0;
    if (m_window != XCB_NONE) {
        xcb_destroy_window(m_connection.get(), m_window);
    }
    // Each attempt has its own window, so that late deliveries go nowhere.
    m_window = xcb_generate_id(m_connection.get());
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, m_window, m_connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    askFor(m_connection.atom("TARGETS"));
    m_stall.start(longestSilence);
    m_connection.flush();
}

void X11SelectionReader::askFor(xcb_atom_t target) {
    // Each type arrives in a property of its own name, so all can be under way at once.
    xcb_convert_selection(m_connection.get(), m_window, m_selection, target, target, XCB_CURRENT_TIME);
}

void X11SelectionReader::ownerChanged(xcb_window_t owner) {
    if (!m_done) {
        return;
    }
    if (owner == XCB_NONE || m_attempts == maximumAttempts) {
        finish(owner == XCB_NONE);
    } else {
        start();
    }
}

void X11SelectionReader::handle(const xcb_generic_event_t &event) {
    if (eventType(event) == XCB_SELECTION_NOTIFY) {
        const auto &notify = eventAs<xcb_selection_notify_event_t>(event);
        if (notify.requestor == m_window) {
            handleNotify(notify);
        }
    } else if (eventType(event) == XCB_PROPERTY_NOTIFY) {
        const auto &change = eventAs<xcb_property_notify_event_t>(event);
        Transfer *found = change.window == m_window ? transfer(change.atom) : nullptr;
        if (found != nullptr && found->stage == Stage::incremental && change.state == XCB_PROPERTY_NEW_VALUE) {
            fetch(*found);
        }
    }
}

void X11SelectionReader::handleNotify(const xcb_selection_notify_event_t &notify) {
    m_stall.start(longestSilence);
    if (Transfer *found = transfer(notify.target)) {
        if (notify.property == XCB_NONE) {
            settle(*found, Stage::absent);
        } else if (found->stage == Stage::asked) {
            fetch(*found);
        }
    } else if (notify.target == m_connection.atom("TARGETS") && m_transfers.empty()) {
        if (notify.property == XCB_NONE) {
            // There is no owner, or one too old to say what it offers: try plain text.
            askForAll({m_connection.atom("UTF8_STRING"), XCB_ATOM_STRING});
            return;
        }
        handleTargets(notify.property);
    }
}

void X11SelectionReader::handleTargets(xcb_atom_t property) {
    const auto question =
        xcb_get_property(m_connection.get(), 1, m_window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, maximumOffers);
    const auto answer = m_connection.reply(xcb_get_property_reply, question);
    if (!answer || answer->format != 32) {
        finish(false);
        return;
    }
    const auto *first = static_cast<const xcb_atom_t *>(xcb_get_property_value(answer.get()));
    askForAll({first, first + answer->value_len});
}

void X11SelectionReader::askForAll(const std::vector<xcb_atom_t> &targets) {
    const std::vector<QString> names = m_connection.atomNames(targets); // one round trip for all
    for (std::size_t i = 0; i < targets.size() && m_transfers.size() < maximumTypes; ++i) {
        if (isContent(names[i]) && transfer(targets[i]) == nullptr) {
            m_transfers.emplace_back().value.target = targets[i];
            askFor(targets[i]);
        }
    }
    if (m_transfers.empty()) {
        finish(true);
    }
}

X11SelectionReader::Transfer *X11SelectionReader::transfer(xcb_atom_t target) {
    const auto found =
        std::ranges::find_if(m_transfers, [&](const Transfer &known) { return known.value.target == target; });
    return found == m_transfers.end() ? nullptr : &*found;
}

/// Reads what the property of a transfer holds. The server has it, so this does not wait for the owner.
void X11SelectionReader::fetch(Transfer &transfer) {
    for (bool isMore = true; isMore;) {
        // Reading the last piece deletes the property, which makes the owner send the next portion.
        const auto question = xcb_get_property(m_connection.get(), 1, m_window, transfer.value.target,
                                               XCB_GET_PROPERTY_TYPE_ANY, transfer.offset / 4, pieceBytes / 4);
        const auto answer = m_connection.reply(xcb_get_property_reply, question);
        if (!answer) {
            settle(transfer, Stage::absent);
            return;
        }
        isMore = receive(transfer, *answer);
    }
}

/// Whether the property holds more. After the last piece the transfer may be gone.
bool X11SelectionReader::receive(Transfer &transfer, const xcb_get_property_reply_t &answer) {
    X11SelectionValue &value = transfer.value;
    if (transfer.stage == Stage::asked && answer.type == m_connection.atom("INCR")) {
        transfer.stage = Stage::incremental;
        return false;
    }
    if (answer.type == XCB_NONE) {
        // While portions come: this one was announced twice and has been read.
        if (transfer.stage == Stage::asked) {
            settle(transfer, Stage::absent);
        }
        return false;
    }
    m_stall.start(longestSilence);
    const int length = xcb_get_property_value_length(&answer);
    m_total += length;
    if (m_total > maximumBytes) {
        m_total -= value.data.size() + length;
        value.data.clear();
        settle(transfer, Stage::tooLarge);
        return false;
    }
    value.type = answer.type;
    value.format = answer.format;
    value.data.append(static_cast<const char *>(xcb_get_property_value(&answer)), length);
    const bool isEnd = length == 0 && transfer.offset == 0;
    transfer.offset = answer.bytes_after > 0 ? transfer.offset + static_cast<std::uint32_t>(length) : 0;
    if (answer.bytes_after == 0 && (transfer.stage == Stage::asked || isEnd)) {
        settle(transfer, Stage::complete);
    }
    return answer.bytes_after > 0;
}

void X11SelectionReader::settle(Transfer &transfer, Stage stage) {
    transfer.stage = stage;
    const auto isUnderWay = [](const Transfer &one) {
        return one.stage == Stage::asked || one.stage == Stage::incremental;
    };
    if (std::ranges::none_of(m_transfers, isUnderWay)) {
        finish(std::ranges::find(m_transfers, Stage::tooLarge, &Transfer::stage) == m_transfers.end());
    }
}

void X11SelectionReader::handleDeadline() {
    const bool isLarge = std::ranges::find(m_transfers, Stage::incremental, &Transfer::stage) != m_transfers.end();
    if (isLarge && !std::exchange(m_isExtended, true)) {
        m_deadline.start(longestLargeReading - longestReading);
    } else {
        finish(false);
    }
}

void X11SelectionReader::finish(bool isAnswered) {
    m_stall.stop();
    m_deadline.stop();
    std::vector<X11SelectionValue> values;
    for (Transfer &transfer : m_transfers) {
        if (transfer.stage == Stage::complete) {
            values.push_back(std::move(transfer.value));
        }
    }
    m_transfers.clear();
    if (const Done done = std::exchange(m_done, {})) {
        done(isAnswered || !values.empty() ? std::optional(std::move(values)) : std::nullopt);
    }
}

} // namespace platform::desktop
