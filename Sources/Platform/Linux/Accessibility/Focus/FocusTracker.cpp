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
// What was climbed longer ago may have moved.
constexpr auto climbLifetime = 5s;
constexpr auto firstAdoptPause = 100ms;
constexpr int mostAttempts = 5;
// A window that lends the keyboard away for a moment (a key grab, a popup closing) gets it back within this time.
constexpr auto grace = 150ms;
constexpr auto firstPause = 150ms;
// How soon to look whether events were lost: while one of our own windows has the focus, and at a new element.
constexpr auto otherWindowPause = 1000ms;
constexpr auto newElementPause = 2000ms;
constexpr auto ancestryLifetime = 1s;
} // namespace

FocusTracker::FocusTracker(Connection &connection, qint32 ownPid, Publish publish)
    : m_connection(connection), m_ownPid(ownPid), m_publish(std::move(publish)), m_lookAt(Clock::now()),
      m_lookPause(firstPause) {
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
                       [this](sd_bus_message *message) { onOwnerChanged(message); });
    m_connection.match(registryStarted, [this](sd_bus_message *) { sendRegistrations(); });
    sendRegistrations();
}

void FocusTracker::sendRegistrations() {
    for (const char *event : {"object:state-changed:focused", "window:activate", "window:deactivate"}) {
        m_connection.send(calls::registration(event, true));
    }
}

void FocusTracker::onStateChanged(sd_bus_message *message) {
    const char *state = nullptr;
    int isSet = 0;
    if (sd_bus_message_read(message, "si", &state, &isSet) <= 0) {
        return;
    }
    const auto source = sourceOf(message);
    if (isSet != 0 && m_candidate.ref != source) {
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

void FocusTracker::onOwnerChanged(sd_bus_message *message) {
    const char *name = nullptr;
    const char *before = nullptr;
    const char *after = nullptr;
    if (sd_bus_message_read(message, "sss", &name, &before, &after) <= 0 || *after != '\0') {
        return;
    }
    // Signals arrive while answers are awaited, so what the waiting code uses is not taken away here.
    m_vanished.emplace_back(name);
}

void FocusTracker::forgetVanished() {
    for (const auto &name : std::exchange(m_vanished, {})) {
        m_windows.erase(name);
        std::erase_if(m_woken, [&](const ElementRef &window) { return window.bus == name; });
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

// A silent application is waited for; that it answers again is an event.
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
        refresh(m_focus.snapshot ? m_focus.snapshot->wanted : TextWanted::nothing);
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

// Only what still has the focus after all the questions about its surroundings is given out.
void FocusTracker::adoptWithin(std::shared_ptr<const Ancestry> ancestry, int attempts) {
    const auto element = ancestry->element;
    const auto *level = ancestry->window();
    const auto window = level != nullptr ? level->element.ref : ElementRef{};
    auto reader = std::make_unique<FieldReader>(element);
    auto snapshot = reader->read(m_connection, TextWanted::value, window, Clock::now() + readTime);
    if (!snapshot.isAnswered && !snapshot.isGone) {
        adoptLater(element.ref, attempts);
        return;
    }
    m_climb.reset();
    if (snapshot.isGone || !hasFocus(snapshot, window)) {
        m_mustConfirm = true;
        return;
    }
    if (!window.isNull()) {
        m_windows[window.bus] = window;
        wake(window);
    }
    m_reader = std::move(reader);
    const auto askedAt = snapshot.takenAt;
    m_focus = {element, std::make_shared<const FieldSnapshot>(std::move(snapshot)), std::move(ancestry), askedAt};
    m_lostSince.reset();
    m_lookPause = newElementPause;
    m_lookAt = Clock::now() + m_lookPause;
    publish();
}

// A slow application is tried again after a pause, a hung one once it answers. Within one application the focus has
// left what had it all the same; what another one shows says so itself.
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

const Focus &FocusTracker::refresh(TextWanted wanted) {
    if (m_reader == nullptr) {
        return m_focus;
    }
    const auto *level = m_focus.ancestry->window();
    const auto window = level != nullptr ? level->element.ref : ElementRef{};
    auto snapshot = m_reader->read(m_connection, wanted, window, Clock::now() + readTime);
    judge(snapshot, window);
    if (m_focus.element && snapshot.isAnswered) {
        m_focus.snapshot = std::make_shared<const FieldSnapshot>(std::move(snapshot));
        publish();
    }
    return m_focus;
}

bool FocusTracker::hasFocus(const FieldSnapshot &snapshot, const ElementRef &window) const {
    return snapshot.kind.states.has(State::focused) &&
           (window.isNull() || isWindowActive(window, snapshot.windowStates));
}

// Whether the element still has the focus, by what was just read of it. Without an answer what was said last holds.
void FocusTracker::judge(const FieldSnapshot &snapshot, const ElementRef &window) {
    if (snapshot.isAnswered && !snapshot.isGone && hasFocus(snapshot, window)) {
        m_focus.confirmedAt = snapshot.takenAt;
        m_lostSince.reset();
    } else if (snapshot.isGone || (m_lostSince && Clock::now() - *m_lostSince >= grace)) {
        drop();
    } else if (snapshot.isAnswered && !m_lostSince) {
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
