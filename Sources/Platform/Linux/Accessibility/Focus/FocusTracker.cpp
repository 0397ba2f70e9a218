// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Focus/FocusTracker.h"

#include <algorithm>
#include <string_view>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;

// An application that is not hung answers within a few milliseconds, a busy browser within some tens.
constexpr auto readTime = 120ms;
constexpr auto climbTime = 300ms;
// What was climbed longer ago may have moved since.
constexpr auto climbLifetime = 5s;
constexpr auto firstAdoptPause = 100ms;
constexpr int mostAttempts = 5;
// A window that loses the keyboard for a moment (a key grab, a popup closing) gets it back within this time.
constexpr auto grace = 150ms;
constexpr auto firstPause = 150ms;
// How soon to check for lost events: while one of our own windows has the focus, and after a new element got it.
constexpr auto otherWindowPause = 1000ms;
constexpr auto newElementPause = 2000ms;
constexpr auto ancestryLifetime = 1s;
// The longest pause between two searches: while nothing has the focus; while one of our own windows has it; while what
// has it confirms it whenever it is asked.
constexpr std::chrono::milliseconds searchPause = 5s;
constexpr std::chrono::milliseconds ownPause = 1s;
constexpr std::chrono::milliseconds longestPause = 60s;
// A pause lasts at least this many times as long as the search before it.
constexpr int pausePerSearch = 100;

ElementRef windowOf(const std::shared_ptr<const Ancestry> &ancestry) {
    const auto *window = ancestry != nullptr ? ancestry->window() : nullptr;
    return window != nullptr ? window->element.ref : ElementRef{};
}
} // namespace

FocusTracker::FocusTracker(Connection &connection, qint32 ownPid, Publish publish)
    : m_connection(connection), m_ownPid(ownPid), m_publish(std::move(publish)), m_search(connection, ownPid),
      m_lookAt(Clock::now()), m_lookPause(firstPause) {
    registerForEvents();
}

void FocusTracker::registerForEvents() {
    m_connection.match("type='signal',interface='org.a11y.atspi.Event.Object',member='StateChanged',arg0='focused'",
                       [this](sd_bus_message *message) { onStateChanged(message); });
    m_connection.match("type='signal',interface='org.a11y.atspi.Event.Window',member='Activate'",
                       [this](sd_bus_message *message) { onWindow(message); });
    m_connection.match("type='signal',interface='org.a11y.atspi.Event.Window',member='Deactivate'",
                       [this](sd_bus_message *message) { onWindow(message); });
    m_connection.match("type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg2=''",
                       [this](sd_bus_message *message) {
                           // Signals arrive while answers are awaited, so what the waiting code uses is not taken
                           // away here.
                           if (auto name = vanishedName(message)) {
                               m_vanished.push_back(*std::move(name));
                           }
                       });
    m_connection.match(registryStarted, [this](sd_bus_message *) { sendRegistrations(); });
    sendRegistrations();
}

void FocusTracker::sendRegistrations() {
    for (const char *event : {"object:state-changed:focused", "window:activate", "window:deactivate"}) {
        m_connection.send(calls::registration(event, true));
    }
}

void FocusTracker::onStateChanged(sd_bus_message *message) {
    const auto change = readValues<std::string, int>(message);
    if (!change) {
        return;
    }
    const auto source = sourceOf(message);
    const bool isSet = std::get<1>(*change) != 0;
    if (isSet && m_candidate.ref != source) {
        m_candidate = {source, 0, {}};
    } else if (m_focus.element && m_focus.element->ref == source) {
        m_mustConfirm = true;
    }
}

void FocusTracker::onWindow(sd_bus_message *message) {
    const auto window = sourceOf(message);
    if (std::string_view(sd_bus_message_get_member(message)) == "Activate") {
        noteActivation(window);
    } else if (window == m_window) {
        m_window = {};
        m_mustConfirm = true;
    }
}

void FocusTracker::noteActivation(const ElementRef &window) {
    m_window = window;
    m_windows[window.bus] = window;
    m_mustConfirm = true;
    lookSoon();
}

void FocusTracker::forgetVanished() {
    for (const auto &name : std::exchange(m_vanished, {})) {
        m_windows.erase(name);
        m_search.forget(name);
        if (m_window.bus == name) {
            m_window = {};
        }
        if (m_candidate.ref.bus == name) {
            m_candidate = {};
        }
        if (m_focus.element && m_focus.element->ref.bus == name) {
            drop();
        }
    }
}

ElementRef FocusTracker::lastWindowOf(const std::string &bus) const {
    const auto found = m_windows.find(bus);
    return found != m_windows.end() ? found->second : ElementRef{};
}

void FocusTracker::lookSoon() {
    m_lookAt = Clock::now() + 30ms;
    m_lookPause = firstPause;
}

Clock::time_point FocusTracker::nextLook() const {
    auto next = m_lostSince ? std::min(m_lookAt, *m_lostSince + grace) : m_lookAt;
    return isReady(m_candidate) ? std::min(next, m_candidate.due) : next;
}

// A silent application is waited for; answering again wakes us.
bool FocusTracker::isReady(const Candidate &candidate) const {
    return !candidate.ref.isNull() && !m_connection.isSilent(candidate.ref.bus);
}

void FocusTracker::settle() {
    forgetVanished();
    if (isReady(m_candidate) && Clock::now() >= m_candidate.due) {
        const auto candidate = std::exchange(m_candidate, {});
        adopt(candidate.ref, candidate.attempts);
    }
    const auto now = Clock::now();
    if (std::exchange(m_mustConfirm, false) || (m_lostSince && now >= *m_lostSince + grace)) {
        refresh(m_focus.reading ? m_focus.reading->wanted : TextWanted::nothing);
    }
    if (now >= m_lookAt) {
        look();
    }
}

bool FocusTracker::isWindowActive(const ElementRef &window, const std::optional<States> &states) const {
    return !states || isActiveWindow(*states) || (window == m_window && !states->has(State::iconified));
}

void FocusTracker::adoptOwn(const Handle &element) {
    m_reader.reset();
    m_focus = {element, nullptr, nullptr, {}};
    m_lostSince.reset();
    m_lookPause = otherWindowPause;
    m_lookAt = Clock::now() + m_lookPause;
    publish();
}

void FocusTracker::adopt(const ElementRef &ref, int attempts) {
    if (m_focus.element && m_focus.element->ref == ref) {
        m_mustConfirm = true;
        return;
    }
    const auto handle = m_connection.handles({ref}, Clock::now() + readTime).front();
    if (handle.pid == 0) {
        return;
    }
    if (handle.pid == m_ownPid) {
        adoptOwn(handle);
        return;
    }
    const auto outcome = climbFrom(handle);
    if (outcome == Climb::Outcome::outOfTime) {
        adoptLater(ref, attempts);
    } else if (outcome == Climb::Outcome::arrived) {
        adoptWithin(std::make_shared<const Ancestry>(m_climb->ancestry()), attempts);
    }
}

// An element is given out only if it still has the focus after all the questions about its surroundings.
void FocusTracker::adoptWithin(std::shared_ptr<const Ancestry> ancestry, int attempts) {
    const auto element = ancestry->element;
    const auto window = windowOf(ancestry);
    auto reader = std::make_unique<FieldReader>(element);
    auto reading = reader->read(m_connection, TextWanted::value, window, Clock::now() + readTime);
    if (!reading.isAnswered && !reading.isGone) {
        adoptLater(element.ref, attempts);
        return;
    }
    m_climb.reset();
    if (reading.isGone || !hasFocus(reading, window)) {
        m_mustConfirm = true;
        return;
    }
    if (!window.isNull()) {
        m_windows[window.bus] = window;
        m_search.wake(window);
    }
    m_reader = std::move(reader);
    const auto askedAt = reading.takenAt;
    m_focus = {element, std::make_shared<const ElementReading>(std::move(reading)), std::move(ancestry), askedAt};
    m_lostSince.reset();
    m_lookPause = newElementPause;
    m_lookAt = Clock::now() + m_lookPause;
    publish();
}

// A slow application is tried again after a pause, a hung one once it answers. If it is the application that had the
// focus so far, the old element has lost it all the same; in another application it will say so itself.
void FocusTracker::adoptLater(const ElementRef &ref, int attempts) {
    if (m_candidate.ref.isNull() && attempts < mostAttempts) {
        m_candidate = {ref, attempts + 1, Clock::now() + firstAdoptPause * (1 << attempts)};
    }
    if (m_focus.element && m_focus.element->ref.bus == ref.bus) {
        drop();
    }
    m_mustConfirm = true;
}

Climb::Outcome FocusTracker::climbFrom(const Handle &element) {
    const bool isBegun = m_climb && m_climb->ancestry().element.ref == element.ref &&
                         Clock::now() - m_climb->ancestry().takenAt < climbLifetime;
    if (!isBegun) {
        m_climb.emplace(element);
    }
    const auto outcome = m_climb->proceed(m_connection, Clock::now() + climbTime);
    if (outcome == Climb::Outcome::brokenOff) {
        m_climb.reset();
    }
    return outcome;
}

void FocusTracker::look() {
    const auto begin = Clock::now();
    const auto isConfirmed = [&] { return m_focus.element && m_focus.confirmedAt >= begin; };
    refresh(m_focus.reading != nullptr ? m_focus.reading->wanted : TextWanted::nothing);
    if (isConfirmed() && m_focus.reading->kind.states.has(State::editable)) {
        m_lookAt = begin + longestPause;
        return;
    }
    const bool isOwn = m_focus.element && m_focus.element->pid == m_ownPid;
    const auto searched = lookInActiveWindow();
    const auto longest = isOwn ? ownPause : isConfirmed() ? longestPause : searchPause;
    m_lookPause = std::min<std::chrono::milliseconds>(2 * m_lookPause, longest);
    // A search goes through all of a long page; it must not keep its browser busy.
    m_lookAt = Clock::now() + std::max<Clock::duration>(m_lookPause, pausePerSearch * searched);
}

// How long an application was busy with the search.
Clock::duration FocusTracker::lookInActiveWindow() {
    const auto window = m_search.activeWindow();
    if (!window) {
        return {};
    }
    m_search.wake(*window);
    m_windows[window->bus] = *window;
    const auto begin = Clock::now();
    const auto focused = m_search.focusedBelow(*window);
    const auto end = Clock::now();
    if (focused && m_candidate.ref != *focused) {
        adopt(*focused);
    }
    return m_connection.isSilent(window->bus) ? Clock::duration() : end - begin;
}

const Focus &FocusTracker::refresh(TextWanted wanted) {
    if (m_reader == nullptr) {
        return m_focus;
    }
    const auto window = windowOf(m_focus.ancestry);
    auto reading = m_reader->read(m_connection, wanted, window, Clock::now() + readTime);
    judge(reading, window);
    if (m_focus.element && reading.isAnswered) {
        m_focus.reading = std::make_shared<const ElementReading>(std::move(reading));
        publish();
    }
    return m_focus;
}

bool FocusTracker::hasFocus(const ElementReading &reading, const ElementRef &window) const {
    return reading.kind.states.has(State::focused) && (window.isNull() || isWindowActive(window, reading.windowStates));
}

// Whether the element still has the focus, by what was just read of it. Without an answer the last one holds.
void FocusTracker::judge(const ElementReading &reading, const ElementRef &window) {
    if (reading.isAnswered && !reading.isGone && hasFocus(reading, window)) {
        m_focus.confirmedAt = reading.takenAt;
        m_lostSince.reset();
    } else if (reading.isGone || (m_lostSince && Clock::now() - *m_lostSince >= grace)) {
        drop();
    } else if (reading.isAnswered && !m_lostSince) {
        m_lostSince = Clock::now();
    }
}

void FocusTracker::drop() {
    m_reader.reset();
    m_focus = {};
    m_lostSince.reset();
    publish();
    lookSoon();
}

std::shared_ptr<const Ancestry> FocusTracker::ancestryOf(const ElementRef &ref) {
    if (m_focus.ancestry == nullptr || m_focus.ancestry->element.ref != ref) {
        return nullptr;
    }
    if (Clock::now() - m_focus.ancestry->takenAt < ancestryLifetime) {
        return m_focus.ancestry;
    }
    auto ancestry = *m_focus.ancestry;
    if (!refreshAncestry(m_connection, ancestry, Clock::now() + readTime)) {
        if (climbFrom(ancestry.element) != Climb::Outcome::arrived) {
            return nullptr;
        }
        ancestry = m_climb->ancestry();
        m_climb.reset();
    }
    m_focus.ancestry = std::make_shared<const Ancestry>(std::move(ancestry));
    publish();
    return m_focus.ancestry;
}

} // namespace platform::desktop::atspi
