// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/AccessibilityCore.h"

#include "Platform/Linux/Accessibility/AtspiElement.h"

#include <algorithm>
#include <array>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
// A frame of a display; what does not come in this time may come with the next tick.
constexpr auto tickWait = 16ms;
constexpr auto questionWait = 60ms;
constexpr auto writeWait = 150ms;
// The questions of one tick follow each other within this time.
constexpr auto sameMoment = 40ms;
// How old an answer may be when its application is too busy for a new one. Fields seldom move.
constexpr auto oldestAnswer = 1s;
constexpr auto oldestFrame = 5s;
// An element that was not named the last time is asked about at once, and what cannot be answered then is taken for no.
constexpr auto oldestConfirmation = 300ms;
constexpr auto wantedFor = 1s;
// After this time the chain above the focused element is asked anew, after the longer one it is waited for.
constexpr auto ancestryLifetime = 1s;
constexpr auto oldestAncestry = 4s;
} // namespace

AccessibilityCore::AccessibilityCore(std::string sessionBusAddress, qint32 ownPid, Conversion inPoints,
                                     AskActiveWindow activeWindow)
    : m_ownPid(ownPid), m_inPoints(std::move(inPoints)), m_activeWindow(std::move(activeWindow)),
      m_reader(std::move(sessionBusAddress), ownPid), m_pages(m_reader) {}

AXUIElement AccessibilityCore::element(const Handle &handle) {
    return AXUIElement(std::make_shared<AtspiElement>(shared_from_this(), handle));
}

Rect AccessibilityCore::inPoints(const PixelRect &rect) const {
    return m_inPoints({static_cast<double>(rect.x), static_cast<double>(rect.y), static_cast<double>(rect.width),
                       static_cast<double>(rect.height)});
}

TextWanted AccessibilityCore::wantedNow(const ElementRef &ref) const {
    const bool isTold = m_told.element && m_told.element->ref == ref;
    return isTold && Clock::now() < m_wantedUntil ? m_wanted : TextWanted::nothing;
}

void AccessibilityCore::noteWanted(TextWanted wanted) {
    const auto now = Clock::now();
    if (wanted >= m_wanted || now >= m_wantedUntil) {
        m_wanted = wanted;
        m_wantedUntil = now + wantedFor;
    }
}

// The first question of a tick: reads the focused element once more, and with it what the tick will ask next.
std::optional<AXUIElement> AccessibilityCore::focusedElement() {
    const auto askedAt = Clock::now();
    // A refresh that is under way still belongs to an application that is busy: its frame was spent already.
    if (m_refresh == nullptr || m_refresh->isFinished()) {
        const auto wanted = m_told.element ? wantedNow(m_told.element->ref) : TextWanted::value;
        m_refresh = m_reader.start([wanted](Session &session) {
            if (session.focus() != nullptr) {
                session.focus()->refresh(wanted);
            }
            return true;
        });
        m_reader.await(*m_refresh, tickWait);
    }
    auto focus = focusInFront(askedAt);
    const auto now = Clock::now();
    if (!m_told.element || !focus.element || m_told.element->ref != focus.element->ref) {
        m_wantedUntil = {};
    }
    m_told = focus;
    m_recent = focus.snapshot;
    if (!focus.element) {
        return std::nullopt;
    }
    m_recentUntil = now + sameMoment;
    if (m_recent != nullptr && now - m_recent->takenAt > oldestAnswer) {
        m_recent = std::make_shared<const FieldSnapshot>(
            FieldSnapshot{.element = *focus.element, .wanted = TextWanted::value});
    }
    return element(*focus.element);
}

// An application that is left says so a little late, and a hung one not at all; keys go to the active window meanwhile.
// Where no window is active, or nobody tells, the application's word counts.
Focus AccessibilityCore::focusInFront(Clock::time_point askedAt) {
    auto focus = m_reader.board().focus();
    if (!focus.element || focus.element->pid == m_ownPid) {
        return focus;
    }
    const bool isNew = !m_told.element || m_told.element->ref != focus.element->ref;
    if (isNew && askedAt - focus.confirmedAt > oldestConfirmation) {
        return {};
    }
    const auto active = m_activeWindow();
    if (!active || isInFront(focus, *active, askedAt)) {
        return focus;
    }
    Focus own;
    if (active->pid == m_ownPid) {
        own.element = Handle{{}, m_ownPid};
    }
    return own;
}

// On the bus an application in a sandbox has another number than its windows give.
bool AccessibilityCore::isInFront(const Focus &focus, const ActiveWindow &active, Clock::time_point askedAt) {
    if (active.pid == focus.element->pid) {
        m_knownByItsWindow = active.pid;
        return true;
    }
    if (focus.element->pid == m_knownByItsWindow) {
        return false;
    }
    if (focus.confirmedAt >= askedAt || m_place.element != focus.element->ref) {
        m_place = {focus.element->ref, active.id};
    }
    return m_place.window == active.id;
}

const FieldSnapshot *AccessibilityCore::snapshot(const Handle &element, TextWanted wanted) {
    if (m_told.element && m_told.element->ref == element.ref) {
        noteWanted(wanted);
    }
    const bool isRecent = m_recent != nullptr && m_recent->element.ref == element.ref && Clock::now() < m_recentUntil &&
                          m_recent->covers(wanted);
    if (isRecent) {
        return m_recent.get();
    }
    const auto atLeast = std::max(wanted, wantedNow(element.ref));
    auto found = m_reader.ask(
        questionWait, [element, atLeast](Session &session) { return queries::read(session, element, atLeast); });
    // Who did not answer one question of this moment is not asked the next.
    auto read = found && *found ? std::move(**found) : FieldSnapshot{.element = element, .wanted = TextWanted::value};
    m_recent = std::make_shared<const FieldSnapshot>(std::move(read));
    m_recentUntil = Clock::now() + sameMoment;
    return m_recent.get();
}

std::optional<AXValue> AccessibilityCore::wrap(const std::optional<Handle> &handle) {
    return handle && handle->pid != 0 ? std::optional<AXValue>(element(*handle)) : std::nullopt;
}

// The chain above the focused element answers the questions that climb it, level by level.
std::shared_ptr<const Ancestry> AccessibilityCore::ancestryAround(const ElementRef &ref) {
    const auto &told = m_told.ancestry;
    if (told == nullptr || (told->element.ref != ref && told->find(ref) == nullptr)) {
        return nullptr;
    }
    const auto age = Clock::now() - told->takenAt;
    const bool isUnderWay = m_chain != nullptr && !m_chain->isFinished();
    if (age >= ancestryLifetime && !isUnderWay) {
        m_chain = m_reader.start([focused = told->element.ref](Session &session) {
            return session.focus() != nullptr ? session.focus()->ancestryOf(focused) : nullptr;
        });
    }
    if (age >= oldestAncestry) {
        m_told.ancestry = m_reader.await(*m_chain, questionWait).value_or(nullptr);
        m_unclimbableUntil = m_told.ancestry == nullptr ? Clock::now() + ancestryLifetime : Clock::time_point();
    }
    return m_told.ancestry;
}

bool AccessibilityCore::isUnclimbable(const ElementRef &ref) const {
    return m_told.element && m_told.element->ref == ref && Clock::now() < m_unclimbableUntil;
}

std::optional<AXValue> AccessibilityCore::fromAncestry(const Handle &element, AXAttribute name) {
    const auto ancestry = ancestryAround(element.ref);
    if (ancestry == nullptr) {
        return isUnclimbable(element.ref) ? std::nullopt : fromQuery(element, name);
    }
    const auto *level = ancestry->find(element.ref);
    if (name == AXAttribute::parent) {
        const auto next = level == nullptr ? 0 : static_cast<std::size_t>(level - ancestry->levels.data()) + 1;
        return next < ancestry->levels.size() ? wrap(ancestry->levels[next].element) : std::nullopt;
    }
    if (name == AXAttribute::window) {
        const auto *window = ancestry->window();
        return window != nullptr ? wrap(window->element) : std::nullopt;
    }
    if (level == nullptr) {
        return fromQuery(element, name);
    }
    if (name == AXAttribute::role) {
        return axRoleName(level->kind);
    }
    if (name == AXAttribute::title) {
        return level->name;
    }
    return level->url ? std::optional<AXValue>(QUrl(*level->url)) : std::nullopt;
}

// Who is a little late has not moved meanwhile. Without the field's frame nobody knows who wrote what around it.
const FieldSnapshot *AccessibilityCore::lastTold(const ElementRef &ref) const {
    const bool isTold = m_told.element && m_told.element->ref == ref && m_told.snapshot != nullptr;
    return isTold && Clock::now() - m_told.snapshot->takenAt < oldestFrame ? m_told.snapshot.get() : nullptr;
}

std::optional<AXValue> AccessibilityCore::fromSnapshot(const Handle &element, AXAttribute name) {
    const auto wanted = name == AXAttribute::value                ? TextWanted::value
                        : name == AXAttribute::numberOfCharacters ? TextWanted::count
                                                                  : TextWanted::nothing;
    const auto *found = snapshot(element, wanted);
    const bool isFrame = name == AXAttribute::position || name == AXAttribute::size;
    if (!found->isAnswered && isFrame) {
        found = lastTold(element.ref);
    }
    if (found == nullptr || !found->isAnswered) {
        return std::nullopt;
    }
    if (name == AXAttribute::role) {
        return axRoleName(found->kind);
    }
    if (name == AXAttribute::value && found->value) {
        return *found->value;
    }
    if (name == AXAttribute::numberOfCharacters && found->characters) {
        return static_cast<double>(*found->characters);
    }
    if (name == AXAttribute::placeholderValue && found->placeholder) {
        return *found->placeholder;
    }
    if (name == AXAttribute::title && found->name) {
        return *found->name;
    }
    if (found->frame && name == AXAttribute::position) {
        return inPoints(*found->frame).origin();
    }
    if (found->frame && name == AXAttribute::size) {
        return inPoints(*found->frame).size();
    }
    return std::nullopt;
}

std::optional<AXValue> AccessibilityCore::fromQuery(const Handle &element, AXAttribute name) {
    if (name == AXAttribute::role || name == AXAttribute::title) {
        return fromSnapshot(element, name);
    }
    if (name == AXAttribute::parent) {
        return wrap(
            m_reader.ask(questionWait, [element](Session &session) { return queries::parent(session, element); })
                .value_or(std::nullopt));
    }
    if (name == AXAttribute::window) {
        return wrap(
            m_reader.ask(questionWait, [element](Session &session) { return queries::window(session, element); })
                .value_or(std::nullopt));
    }
    if (name == AXAttribute::url) {
        const auto address =
            m_reader.ask(questionWait, [element](Session &session) { return queries::address(session, element); })
                .value_or(std::nullopt);
        return address ? std::optional<AXValue>(QUrl(*address)) : std::nullopt;
    }
    if (name == AXAttribute::selectedTextRange) {
        const auto range =
            m_reader.ask(questionWait, [element](Session &session) { return queries::selectedRange(session, element); })
                .value_or(std::nullopt);
        return range ? std::optional<AXValue>(*range) : std::nullopt;
    }
    const auto children =
        m_reader.ask(questionWait, [element](Session &session) { return queries::children(session, element); })
            .value_or(std::nullopt);
    if (!children) {
        return std::nullopt;
    }
    std::vector<AXUIElement> elements;
    for (const auto &child : *children) {
        elements.push_back(this->element(child));
    }
    return elements;
}

std::optional<AXValue> AccessibilityCore::attribute(const Handle &element, AXAttribute name) {
    // Our own windows are answered by this very thread: never ask about them.
    if (element.pid == m_ownPid) {
        return std::nullopt;
    }
    const bool isFocused = m_told.element && m_told.element->ref == element.ref;
    if (name == AXAttribute::parent || name == AXAttribute::window || name == AXAttribute::url ||
        (!isFocused && (name == AXAttribute::role || name == AXAttribute::title))) {
        return fromAncestry(element, name);
    }
    if (name == AXAttribute::children || name == AXAttribute::selectedTextRange) {
        return fromQuery(element, name);
    }
    return fromSnapshot(element, name);
}

bool AccessibilityCore::isValueSettable(const Handle &element) {
    if (element.pid == m_ownPid) {
        return false;
    }
    const auto *found = snapshot(element, TextWanted::nothing);
    return found->isAnswered && found->isValueSettable;
}

bool AccessibilityCore::setAttribute(const Handle &element, AXAttribute name, const AXValue &value) {
    if (element.pid == m_ownPid) {
        return false;
    }
    m_recent = nullptr;
    const auto *text = std::get_if<QString>(&value);
    if (name == AXAttribute::value && text != nullptr) {
        return m_reader
            .ask(writeWait,
                 [element, text = *text](Session &session) { return queries::setText(session, element, text); })
            .value_or(false);
    }
    const auto *range = std::get_if<AXRange>(&value);
    if (name == AXAttribute::selectedTextRange && range != nullptr) {
        return m_reader
            .ask(writeWait, [element, range = *range](
                                Session &session) { return queries::setSelectedRange(session, element, range); })
            .value_or(false);
    }
    return false;
}

std::vector<AXSubtreeNode> AccessibilityCore::subtree(const Handle &element, AXSubtreeLimits limits,
                                                      AXFreshness freshness) {
    const auto copy = element.pid == m_ownPid ? nullptr : m_pages.copy({element.ref, limits}, freshness);
    std::vector<AXSubtreeNode> nodes;
    if (copy == nullptr) {
        return nodes;
    }
    for (const auto &item : copy->items) {
        nodes.push_back({item.depth, item.role, item.value, {}});
        if (item.frame) {
            nodes.back().frame = inPoints(*item.frame);
        }
    }
    return nodes;
}

void AccessibilityCore::prepareSubtree(const Handle &element, AXSubtreeLimits limits, AXFreshness freshness) {
    if (element.pid != m_ownPid) {
        m_pages.prepare({element.ref, limits}, freshness);
    }
}

std::optional<AXUIElement> AccessibilityCore::focusedWindow(qint32 pid) {
    if (pid == m_ownPid) {
        return std::nullopt;
    }
    // The window of the focused element is known; it is asked for whenever the focus has moved.
    const auto *window = m_told.ancestry != nullptr && m_told.element && m_told.element->pid == pid
                             ? m_told.ancestry->window()
                             : nullptr;
    if (window != nullptr) {
        return element(window->element);
    }
    const auto found =
        m_reader.ask(questionWait, [pid](Session &session) { return queries::focusedWindow(session, pid); })
            .value_or(std::nullopt);
    return found && found->pid != 0 ? std::optional(element(*found)) : std::nullopt;
}

std::optional<AXValue> AccessibilityCore::applicationAttribute(qint32 pid, AXAttribute name) {
    if (name == AXAttribute::focusedWindow) {
        const auto window = focusedWindow(pid);
        return window ? std::optional<AXValue>(*window) : std::nullopt;
    }
    if (pid == m_ownPid) {
        return std::nullopt;
    }
    const auto root = m_reader.ask(questionWait, [pid](Session &session) { return queries::application(session, pid); })
                          .value_or(std::nullopt);
    return root ? attribute(*root, name) : std::nullopt;
}

} // namespace platform::desktop::atspi
