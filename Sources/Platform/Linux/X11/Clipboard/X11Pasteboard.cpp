// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/Clipboard/X11Pasteboard.h"

#include <algorithm>
#include <array>

namespace platform::desktop {

namespace {

/// How long the program's exit may wait for a clipboard manager.
constexpr std::chrono::milliseconds longestHandOver{200};

/// The targets that give plain text as UTF-8.
constexpr std::array<QLatin1StringView, 4> utf8Targets{QLatin1StringView("UTF8_STRING"),
                                                       QLatin1StringView("text/plain;charset=utf-8"),
                                                       QLatin1StringView("text/plain"), QLatin1StringView("TEXT")};

/// With the value "secret" it marks content that clipboard histories leave out.
constexpr auto secretHint = "x-kde-passwordManagerHint";

std::optional<QString> stringIn(const PasteboardItems &items) {
    for (const PasteboardItem &item : items) {
        for (const auto &[type, data] : item.representations) {
            if (std::ranges::find(utf8Targets, type) != utf8Targets.end()) {
                return QString::fromUtf8(data);
            }
        }
    }
    return std::nullopt;
}

} // namespace

X11Pasteboard::X11Pasteboard(X11Connection &connection)
    : m_connection(connection),
      m_watch(connection, "CLIPBOARD", [this](const X11SelectionWatch::Change &change) { ownerChanged(change); }),
      m_owner(connection, m_watch.selection()) {}

X11Pasteboard::~X11Pasteboard() {
    if (m_holdsUserContent) {
        m_owner.handOver(longestHandOver);
    }
}

void X11Pasteboard::ownerChanged(const X11SelectionWatch::Change &change) {
    // This program's own changes are counted when they are made.
    const bool isOurs = change.owner == m_connection.window() ||
                        (change.owner == XCB_NONE && change.selection_timestamp == m_givenUpAt);
    if (isOurs) {
        return;
    }
    ++m_changeCount;
    m_owner.lose();
    for (const auto &[number, reading] : m_readings) {
        reading.reader->ownerChanged(change.owner);
    }
}

qint64 X11Pasteboard::changeCount() {
    // Decides whether the user's content may be overwritten, so it must not lag behind the server.
    m_connection.sync();
    m_watch.takeChanges();
    return m_changeCount;
}

void X11Pasteboard::copyItems(std::function<void(std::optional<PasteboardItems>)> done) {
    (void)changeCount(); // takes note of an owner that came just now
    if (m_isCleared || m_owner.isOwner()) {
        auto items = m_isCleared ? PasteboardItems() : itemsFrom(m_owner.values());
        QMetaObject::invokeMethod(
            &m_context, [done = std::move(done), items = std::move(items)] { done(items); }, Qt::QueuedConnection);
        return;
    }
    const auto finished = [this, number = ++m_lastReading](const auto &values) {
        // Later, since that destroys the reader, which is still at work.
        QMetaObject::invokeMethod(
            &m_context, [this, number, values] { finishReading(number, values); }, Qt::QueuedConnection);
    };
    m_readings[m_lastReading] = {std::make_unique<X11SelectionReader>(m_connection, m_watch.selection(), finished),
                                 std::move(done)};
}

void X11Pasteboard::finishReading(int number, const std::optional<std::vector<X11SelectionValue>> &values) {
    const auto done = m_readings.extract(number).mapped().done;
    if (!values) {
        done(std::nullopt);
        return;
    }
    for (const X11SelectionValue &value : *values) {
        m_forms[m_connection.atomNames({value.target}).front()] = {value.type, value.format};
    }
    done(itemsFrom(*values));
}

PasteboardItems X11Pasteboard::itemsFrom(const std::vector<X11SelectionValue> &values) {
    if (values.empty()) {
        return {};
    }
    PasteboardItem item;
    for (const X11SelectionValue &value : values) {
        item.representations.emplace_back(m_connection.atomNames({value.target}).front(), value.data);
    }
    return {item};
}

void X11Pasteboard::copyString(std::function<void(std::optional<QString>)> done) {
    copyItems([done = std::move(done)](const std::optional<PasteboardItems> &items) {
        done(items ? stringIn(*items) : std::nullopt);
    });
}

void X11Pasteboard::clearContents() {
    ++m_changeCount;
    m_isCleared = true;
    m_holdsUserContent = false;
    m_owner.forget();
    m_givenUpAt = m_connection.serverTime();
    // Not at once: clipboard managers refill an empty clipboard, and would overwrite what is written next.
    QMetaObject::invokeMethod(
        &m_context, [this] { giveUpIfStillCleared(); }, Qt::QueuedConnection);
}

void X11Pasteboard::giveUpIfStillCleared() {
    if (std::exchange(m_isCleared, false)) {
        m_owner.giveUp(m_givenUpAt);
    }
}

void X11Pasteboard::setString(const QString &text) {
    const QByteArray utf8 = text.toUtf8();
    std::vector<X11SelectionValue> values;
    const xcb_atom_t utf8String = m_connection.atom("UTF8_STRING");
    for (const QLatin1StringView target : utf8Targets) {
        const xcb_atom_t atom = m_connection.atom(QByteArray(target.data(), target.size()));
        values.push_back({atom, atom, 8, utf8});
    }
    values.back().type = utf8String; // "TEXT" leaves the encoding to the owner
    values.push_back({XCB_ATOM_STRING, XCB_ATOM_STRING, 8, text.toLatin1()});
    const xcb_atom_t hint = m_connection.atom(secretHint);
    values.push_back({hint, hint, 8, QByteArrayLiteral("secret")});
    m_holdsUserContent = false;
    write(std::move(values));
}

void X11Pasteboard::writeObjects(const PasteboardItems &items) {
    std::vector<X11SelectionValue> values;
    for (const PasteboardItem &item : items) {
        for (const auto &[type, data] : item.representations) {
            X11SelectionValue value = valueFrom(type, data);
            const bool isNew = std::ranges::find(values, value.target, &X11SelectionValue::target) == values.end();
            if (isNew && value.target != XCB_NONE) {
                values.push_back(std::move(value));
            }
        }
    }
    if (!values.empty()) {
        const xcb_atom_t hint = m_connection.atom(secretHint);
        m_holdsUserContent = std::ranges::none_of(
            values, [hint](const X11SelectionValue &value) { return value.target == hint && value.data == "secret"; });
        write(std::move(values));
    }
}

void X11Pasteboard::write(std::vector<X11SelectionValue> values) {
    ++m_changeCount;
    m_isCleared = false;
    const bool isOurs = m_owner.claim();
    // Earlier changes by other programs may still be queued, and must not be taken for the loss of the new content.
    m_watch.takeChanges();
    if (isOurs) {
        m_owner.hold(std::move(values));
    }
}

X11SelectionValue X11Pasteboard::valueFrom(const QString &type, const QByteArray &data) {
    const xcb_atom_t target = m_connection.atom(type.toLatin1());
    const auto known = m_forms.find(type);
    if (known == m_forms.end() || data.size() % (known->second.format / 8) != 0) {
        return {target, target, 8, data};
    }
    return {target, known->second.type, known->second.format, data};
}

} // namespace platform::desktop
