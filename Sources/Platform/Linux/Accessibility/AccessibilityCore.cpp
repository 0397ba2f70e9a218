// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/AccessibilityCore.h"

#include "Platform/Linux/Accessibility/ElementQueries.h"

#include <QCoreApplication>

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
// A display's frame; what does not come in this time may come with the next tick.
constexpr auto tickWait = 16ms;
constexpr auto questionWait = 60ms;
constexpr auto writeWait = 150ms;
// The questions of one tick follow each other within this time.
constexpr auto sameMoment = 40ms;
// How old an answer may be when its application is too busy for a new one. Fields seldom move.
constexpr auto oldestAnswer = 1s;
constexpr auto oldestFrame = 5s;
// An element that was not given out the last time must have confirmed its focus this recently.
constexpr auto oldestConfirmation = 300ms;
constexpr auto wantedFor = 1s;
// After this time the chain above the focused element is asked for again; after the longer one the answer is waited
// for.
constexpr auto ancestryLifetime = 1s;
constexpr auto oldestAncestry = 4s;

/// An element of an application on the accessibility bus.
class Element final : public AXElementBackend {
  public:
    Element(std::shared_ptr<AccessibilityCore> core, Handle handle)
        : m_core(std::move(core)), m_handle(std::move(handle)) {}
    [[nodiscard]] std::optional<AXValue> copyAttributeValue(AXAttribute attribute) const override {
        return m_core->attribute(m_handle, attribute);
    }
    [[nodiscard]] bool isAttributeSettable(AXAttribute attribute) const override {
        const bool isWritable = attribute == AXAttribute::value || attribute == AXAttribute::selectedTextRange;
        return isWritable && m_core->isValueSettable(m_handle);
    }
    bool setAttributeValue(AXAttribute attribute, const AXValue &value) const override {
        return m_core->setAttribute(m_handle, attribute, value);
    }
    [[nodiscard]] qint32 pid() const override { return m_handle.pid; }
    [[nodiscard]] bool isEqual(const AXElementBackend &other) const override {
        const auto *element = dynamic_cast<const Element *>(&other);
        return element != nullptr && element->m_handle.ref == m_handle.ref;
    }
    [[nodiscard]] std::vector<AXSubtreeNode> copySubtree(AXSubtreeLimits limits, AXFreshness freshness) const override {
        return m_core->subtree(m_handle, limits, freshness);
    }
    void prepareSubtree(AXSubtreeLimits limits, AXFreshness freshness) const override {
        m_core->prepareSubtree(m_handle, limits, freshness);
    }

  private:
    std::shared_ptr<AccessibilityCore> m_core;
    Handle m_handle;
};

/// The desktop as a whole (without a process) or a whole application. A bulk read starts at a window or a page.
class RootElement final : public AXElementBackend {
  public:
    RootElement(std::shared_ptr<AccessibilityCore> core, std::optional<qint32> pid)
        : m_core(std::move(core)), m_pid(pid) {}
    [[nodiscard]] std::optional<AXValue> copyAttributeValue(AXAttribute attribute) const override {
        if (m_pid) {
            return m_core->applicationAttribute(*m_pid, attribute);
        }
        auto focused = attribute == AXAttribute::focusedUIElement ? m_core->focusedElement() : std::nullopt;
        return focused ? std::optional<AXValue>(std::move(*focused)) : std::nullopt;
    }
    [[nodiscard]] qint32 pid() const override { return m_pid.value_or(0); }
    [[nodiscard]] bool isEqual(const AXElementBackend &other) const override {
        const auto *root = dynamic_cast<const RootElement *>(&other);
        return root != nullptr && root->m_pid == m_pid;
    }

  private:
    std::shared_ptr<AccessibilityCore> m_core;
    std::optional<qint32> m_pid;
};

template <class T> std::optional<AXValue> given(const std::optional<T> &value) {
    return value ? std::optional<AXValue>(*value) : std::nullopt;
}
} // namespace

AccessibilityCore::AccessibilityCore(AtspiAccessibility::Options options)
    : m_options(std::move(options)),
      m_ownPid(m_options.ownPid != 0 ? m_options.ownPid : static_cast<qint32>(QCoreApplication::applicationPid())),
      m_reader(m_options.sessionBusAddress.empty() ? sessionBusAddress() : m_options.sessionBusAddress, m_ownPid),
      m_pages(m_reader) {}

// The outcome of a query on the reader's thread; an empty one when it takes longer than the limit, or when there is no
// accessibility bus.
template <class Query> auto AccessibilityCore::ask(Query query, std::chrono::milliseconds limit) {
    using Result = std::invoke_result_t<Query, Session &>;
    const auto onReader = [query = std::move(query)](Session &session) {
        return session.connection() != nullptr ? query(session) : Result();
    };
    return m_reader.ask(limit, onReader).value_or(Result());
}

AXUIElement AccessibilityCore::desktop() {
    return AXUIElement(std::make_shared<RootElement>(shared_from_this(), std::nullopt));
}

AXUIElement AccessibilityCore::application(qint32 pid) {
    return AXUIElement(std::make_shared<RootElement>(shared_from_this(), pid));
}

AXUIElement AccessibilityCore::wrap(const Handle &handle) {
    return AXUIElement(std::make_shared<Element>(shared_from_this(), handle));
}

std::optional<AXValue> AccessibilityCore::wrapKnown(const ElementReading *reading) {
    return reading != nullptr && reading->element.pid != 0 ? std::optional<AXValue>(wrap(reading->element))
                                                           : std::nullopt;
}

TextWanted AccessibilityCore::wantedNow(const ElementRef &ref) const {
    return isTold(ref) && Clock::now() < m_wantedUntil ? m_wanted : TextWanted::nothing;
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
    // A refresh that is still under way has had its frame: its application is busy.
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
    if (!focus.element || !isTold(focus.element->ref)) {
        m_wantedUntil = {};
    }
    m_told = focus;
    m_recent = focus.reading;
    if (!focus.element) {
        return std::nullopt;
    }
    m_recentUntil = now + sameMoment;
    if (m_recent != nullptr && now - m_recent->takenAt > oldestAnswer) {
        m_recent = std::make_shared<const ElementReading>(
            ElementReading{.element = *focus.element, .wanted = TextWanted::value});
    }
    return wrap(*focus.element);
}

// An application that loses the focus says so a little late, and a hung one not at all; keys already go to the active
// window. Where the desktop names no active window the application's word counts.
Focus AccessibilityCore::focusInFront(Clock::time_point askedAt) {
    auto focus = m_reader.board().focus();
    if (!focus.element || focus.element->pid == m_ownPid) {
        return focus;
    }
    if (!isTold(focus.element->ref) && askedAt - focus.confirmedAt > oldestConfirmation) {
        return {};
    }
    const auto active = m_options.activeWindow();
    if (!active || isInFront(focus, *active, askedAt)) {
        return focus;
    }
    Focus own;
    if (active->pid == m_ownPid) {
        own.element = Handle{{}, m_ownPid};
    }
    return own;
}

// An application in a sandbox has another process on the bus than its windows give.
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

const ElementReading &AccessibilityCore::read(const Handle &element, TextWanted wanted) {
    if (isTold(element.ref)) {
        noteWanted(wanted);
    }
    const bool isRecent = m_recent != nullptr && m_recent->element.ref == element.ref && Clock::now() < m_recentUntil &&
                          m_recent->covers(wanted);
    if (!isRecent) {
        const auto atLeast = std::max(wanted, wantedNow(element.ref));
        auto found = ask([=](Session &session) { return queries::read(session, element, atLeast); }, questionWait);
        // An application that did not answer one question of this moment is not asked the next.
        m_recent = std::make_shared<const ElementReading>(
            std::move(found).value_or(ElementReading{.element = element, .wanted = TextWanted::value}));
        m_recentUntil = Clock::now() + sameMoment;
    }
    return *m_recent;
}

// The chain above the focused element, if the element is in it or the focused one itself.
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

std::shared_ptr<const Ancestry> AccessibilityCore::ancestryAbove(const Handle &element) {
    auto ancestry = ancestryAround(element.ref);
    const bool isUnclimbable = isTold(element.ref) && Clock::now() < m_unclimbableUntil;
    if (ancestry == nullptr && !isUnclimbable) {
        auto climbed = ask([=](Session &session) { return queries::ancestry(session, element); }, questionWait);
        ancestry = climbed ? std::make_shared<const Ancestry>(*std::move(climbed)) : nullptr;
    }
    return ancestry;
}

const ElementReading *AccessibilityCore::levelOf(const ElementRef &ref) {
    const auto ancestry = ancestryAround(ref);
    return ancestry != nullptr ? ancestry->find(ref) : nullptr;
}

// A field has hardly moved while its application is a little late, and without its frame the program cannot tell who
// wrote what around it.
const ElementReading *AccessibilityCore::lastTold(const ElementRef &ref) const {
    const bool isKnown = isTold(ref) && m_told.reading != nullptr;
    return isKnown && Clock::now() - m_told.reading->takenAt < oldestFrame ? m_told.reading.get() : nullptr;
}

std::optional<AXValue> AccessibilityCore::fromReading(const ElementReading &reading, AXAttribute name) const {
    switch (name) {
    case AXAttribute::role:
        return axRoleName(reading.kind);
    case AXAttribute::title:
        return given(reading.name);
    case AXAttribute::value:
        return given(reading.value);
    case AXAttribute::placeholderValue:
        return given(reading.placeholder);
    case AXAttribute::numberOfCharacters:
        return reading.characters ? std::optional<AXValue>(static_cast<double>(*reading.characters)) : std::nullopt;
    case AXAttribute::position:
        return reading.frame ? std::optional<AXValue>(m_options.inPoints(*reading.frame).origin()) : std::nullopt;
    case AXAttribute::size:
        return reading.frame ? std::optional<AXValue>(m_options.inPoints(*reading.frame).size()) : std::nullopt;
    default:
        return std::nullopt;
    }
}

std::optional<AXValue> AccessibilityCore::fromFreshReading(const Handle &element, AXAttribute name) {
    const auto wanted = name == AXAttribute::value                ? TextWanted::value
                        : name == AXAttribute::numberOfCharacters ? TextWanted::count
                                                                  : TextWanted::nothing;
    const auto *reading = &read(element, wanted);
    const bool isFrame = name == AXAttribute::position || name == AXAttribute::size;
    if (!reading->isAnswered && isFrame) {
        reading = lastTold(element.ref);
    }
    return reading != nullptr && reading->isAnswered ? fromReading(*reading, name) : std::nullopt;
}

std::optional<AXValue> AccessibilityCore::attribute(const Handle &element, AXAttribute name) {
    // Our own windows are answered by this very thread: never ask about them.
    if (element.pid == m_ownPid) {
        return std::nullopt;
    }
    switch (name) {
    case AXAttribute::parent:
    case AXAttribute::window: {
        const auto ancestry = ancestryAbove(element);
        if (ancestry == nullptr) {
            return std::nullopt;
        }
        return wrapKnown(name == AXAttribute::parent ? ancestry->above(element.ref) : ancestry->window());
    }
    case AXAttribute::url: {
        const auto *level = levelOf(element.ref);
        const auto url = level != nullptr
                             ? level->url
                             : ask([=](Session &session) { return queries::address(session, element); }, questionWait);
        return url ? std::optional<AXValue>(QUrl(*url)) : std::nullopt;
    }
    case AXAttribute::children: {
        const auto children = ask([=](Session &session) { return queries::children(session, element); }, questionWait);
        std::vector<AXUIElement> elements;
        for (const auto &child : children.value_or(std::vector<Handle>())) {
            elements.push_back(wrap(child));
        }
        return children ? std::optional<AXValue>(std::move(elements)) : std::nullopt;
    }
    case AXAttribute::selectedTextRange:
        return given(ask([=](Session &session) { return queries::selectedRange(session, element); }, questionWait));
    case AXAttribute::role:
    case AXAttribute::title:
        if (const auto *level = isTold(element.ref) ? nullptr : levelOf(element.ref)) {
            return fromReading(*level, name);
        }
        [[fallthrough]];
    default:
        return fromFreshReading(element, name);
    }
}

bool AccessibilityCore::isValueSettable(const Handle &element) {
    return element.pid != m_ownPid && read(element, TextWanted::nothing).isValueSettable;
}

bool AccessibilityCore::setAttribute(const Handle &element, AXAttribute name, const AXValue &value) {
    if (element.pid == m_ownPid) {
        return false;
    }
    m_recent = nullptr;
    if (const auto *text = std::get_if<QString>(&value); name == AXAttribute::value && text != nullptr) {
        return ask([element, text = *text](Session &session) { return queries::setText(session, element, text); },
                   writeWait);
    }
    const auto *range = std::get_if<AXRange>(&value);
    return name == AXAttribute::selectedTextRange && range != nullptr &&
           ask([element,
                range = *range](Session &session) { return queries::setSelectedRange(session, element, range); },
               writeWait);
}

std::vector<AXSubtreeNode> AccessibilityCore::subtree(const Handle &element, AXSubtreeLimits limits,
                                                      AXFreshness freshness) {
    const auto copy = element.pid == m_ownPid ? nullptr : m_pages.copy({element.ref, limits}, freshness);
    auto nodes = copy != nullptr ? copy->items : std::vector<AXSubtreeNode>();
    for (auto &node : nodes) {
        node.frame = node.frame ? std::optional(m_options.inPoints(*node.frame)) : std::nullopt;
    }
    return nodes;
}

void AccessibilityCore::prepareSubtree(const Handle &element, AXSubtreeLimits limits, AXFreshness freshness) {
    if (element.pid != m_ownPid) {
        m_pages.prepare({element.ref, limits}, freshness);
    }
}

std::optional<AXValue> AccessibilityCore::focusedWindow(qint32 pid) {
    // The program asks whenever the focus has moved; the focused element's window is known already.
    if (m_told.ancestry != nullptr && m_told.element && m_told.element->pid == pid) {
        if (auto window = wrapKnown(m_told.ancestry->window())) {
            return window;
        }
    }
    const auto found = ask([=](Session &session) { return queries::focusedWindow(session, pid); }, questionWait);
    return found ? std::optional<AXValue>(wrap(*found)) : std::nullopt;
}

std::optional<AXValue> AccessibilityCore::applicationAttribute(qint32 pid, AXAttribute name) {
    if (pid == m_ownPid) {
        return std::nullopt;
    }
    if (name == AXAttribute::focusedWindow) {
        return focusedWindow(pid);
    }
    const auto root = ask([=](Session &session) { return queries::application(session, pid); }, questionWait);
    return root ? attribute(*root, name) : std::nullopt;
}

} // namespace platform::desktop::atspi
