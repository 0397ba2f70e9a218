// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Page/PageMirror.h"

#include <algorithm>
#include <array>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
// A page of thousands of messages takes a quarter of a second for a single question.
constexpr auto pageTime = 600ms;
// How long a page is kept up to date after the last question, and how much longer changes are listened to.
constexpr auto wantedFor = 2s;
constexpr auto listenFor = 10s;
// A page changes in several places at once: wait until no more signals come, but not for ever.
constexpr auto quiet = 40ms;
constexpr auto longestUnrest = 100ms;
// A page that changes all the time is read only as often as it is asked for, this long before the next question.
constexpr auto ahead = 150ms;
// The pause after a read: the shortest, or, after a whole read, twice the time it took, but not more than the longest.
constexpr auto shortestRest = 100ms;
constexpr auto longestRest = 500ms;
// A change that was not reported is seen after this time. The old copy holds a little longer, until the read is done.
constexpr auto copyLifetime = 3s;
constexpr auto lateness = 500ms;

struct Event {
    const char *name;
    const char *member;
    const char *argument = "";
};
// What Chromium and Firefox report when a message comes or goes or its text changes, and when the box is typed into.
// Neither reports scrolling, nor that an element has moved.
constexpr std::array events{
    Event{"object:children-changed", "ChildrenChanged"}, Event{"object:text-changed", "TextChanged"},
    Event{"object:property-change:accessible-name", "PropertyChange", ",arg0='accessible-name'"}};
} // namespace

bool MirroredPage::isFresh(const PageName &page, Clock::time_point now) const {
    return shows(page) && !isStale && now - copy->begunAt < copyLifetime + lateness;
}

PageMirror::PageMirror(Connection &connection, std::function<void()> giveWay, Publish publish)
    : m_connection(connection), m_giveWay(std::move(giveWay)), m_publish(std::move(publish)) {}

void PageMirror::want(const PageName &page) {
    if (page.root.bus != m_page.root.bus) {
        stopListening();
    }
    if (page != m_page) {
        m_page = page;
        m_readyAt = {};
    }
    const auto now = Clock::now();
    m_askedEvery = now - m_askedAt < wantedFor ? now - m_askedAt : Clock::duration();
    m_askedAt = now;
    m_wantedUntil = now + wantedFor;
    listen();
}

void PageMirror::refresh(const PageName &page, Clock::time_point notBefore) {
    want(page);
    const auto now = Clock::now();
    const bool mustBeNew = notBefore != Clock::time_point();
    const bool isGood = MirroredPage{m_copy, m_isStale}.isFresh(page, now) && m_copy->begunAt >= notBefore;
    if (!isGood && (mustBeNew || now >= m_readyAt)) {
        read(!mustBeNew);
    }
}

void PageMirror::settle(const std::optional<Rect> &field) {
    if (field && field != m_field) {
        const bool hasMoved = std::exchange(m_field, field).has_value();
        if (hasMoved) {
            noteChange();
        }
    }
    const auto now = Clock::now();
    if (now < nextLook()) {
        return;
    }
    if (isWanted(now)) {
        read(true);
    } else {
        stopListening();
        forget();
    }
}

Clock::time_point PageMirror::nextLook() const {
    if (!isWanted(Clock::now())) {
        return m_subscriptions.empty() ? Clock::time_point::max() : m_wantedUntil + listenFor;
    }
    if (!hasCopy()) {
        return m_readyAt;
    }
    if (!m_isStale) {
        return std::max(m_copy->begunAt + copyLifetime, m_readyAt);
    }
    const auto settled = std::min(m_lastChangeAt + quiet, m_firstChangeAt + longestUnrest);
    return std::max({settled, m_readyAt, m_askedAt + m_askedEvery - ahead});
}

void PageMirror::read(bool mayGoOn) {
    const auto begin = Clock::now();
    const auto changedBefore = std::exchange(m_isStale, false);
    m_isReading = true;
    auto outcome = m_reader.read({m_connection, begin + pageTime, m_giveWay}, m_page.root, m_page.limits, mayGoOn);
    m_isReading = false;
    const auto end = Clock::now();
    m_readyAt = end + shortestRest;
    if (outcome.items.empty()) {
        m_isStale = m_isStale || changedBefore;
        return;
    }
    m_readyAt = end + std::clamp<Clock::duration>(2 * (end - begin), shortestRest, longestRest);
    // A change reported meanwhile may have come too late for this read.
    m_isStale = m_isStale || (changedBefore && m_lastChangeAt >= outcome.begunAt);
    m_copy = std::make_shared<const PageCopy>(PageCopy{m_page, std::move(outcome.items), outcome.begunAt});
    publish();
}

void PageMirror::onChange(const ElementRef &source) {
    // The application's other tabs and windows report changes as well.
    if (source.bus == m_page.root.bus && (m_isReading || m_reader.knows(source))) {
        noteChange();
    }
}

void PageMirror::noteChange() {
    m_lastChangeAt = Clock::now();
    if (m_isStale) {
        return;
    }
    m_isStale = true;
    m_firstChangeAt = m_lastChangeAt;
    publish();
}

void PageMirror::listen() {
    if (!m_subscriptions.empty()) {
        return;
    }
    for (const auto &event : events) {
        const auto rule = "type='signal',interface='org.a11y.atspi.Event.Object',member='" + std::string(event.member) +
                          "',sender='" + m_page.root.bus + "'" + event.argument;
        m_subscriptions.push_back(
            m_connection.subscribe(rule, [this](sd_bus_message *message) { onChange(sourceOf(message)); }));
    }
    m_subscriptions.push_back(
        m_connection.subscribe(registryStarted, [this](sd_bus_message *) { sendRegistrations(true); }));
    sendRegistrations(true);
}

// A conversation is kept only as long as it is of use.
void PageMirror::forget() {
    m_copy.reset();
    m_reader = {};
    publish();
}

// Every application sends what anybody has registered for, so the registration ends when it is not needed.
void PageMirror::stopListening() {
    if (!m_subscriptions.empty()) {
        m_subscriptions.clear();
        sendRegistrations(false);
        m_isStale = true;
    }
}

void PageMirror::sendRegistrations(bool isOn) const {
    for (const auto &event : events) {
        m_connection.send(calls::registration(event.name, isOn));
    }
}

} // namespace platform::desktop::atspi
