// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Accessibility/FocusTracker.h"

#include <algorithm>
#include <string_view>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;

// An application that is not hung answers within a few milliseconds, a busy browser within some tens.
constexpr auto readTime = 120ms;
constexpr auto climbTime = 300ms;
// A window that lends the keyboard away for a moment (a key grab, a popup closing) gets it back within this time.
constexpr auto grace = 150ms;
constexpr auto firstPause = 150ms;
// How soon to look whether events were lost: while one of our own windows has the focus, and at a new element.
constexpr auto otherWindowPause = 1000ms;
constexpr auto newElementPause = 2000ms;
constexpr auto ancestryLifetime = 1s;

ElementRef sourceOf(sd_bus_message *message) {
    const char *sender = sd_bus_message_get_sender(message);
    const char *path = sd_bus_message_get_path(message);
    return {sender != nullptr ? sender : "", path != nullptr ? path : ""};
}
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
    // Applications send only those events that somebody has registered for.
    for (const char *event : {"object:state-changed:focused", "window:activate", "window:deactivate"}) {
        m_connection.send(
            {{registryName, "/org/a11y/atspi/registry"},
             "org.a11y.atspi.Registry",
             "RegisterEvent",
             [event](sd_bus_message *message) { return sd_bus_message_append(message, "sass", event, 0, ""); },
             true});
    }
}

void FocusTracker::onStateChanged(sd_bus_message *message) {
    const char *state = nullptr;
    int isSet = 0;
    if (sd_bus_message_read(message, "si", &state, &isSet) <= 0) {
        return;
    }
    const auto source = sourceOf(message);
    if (isSet != 0) {
        m_candidate = source;
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
        if (m_candidate.bus == name) {
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
    return m_lostSince ? std::min(m_lookAt, *m_lostSince + grace) : m_lookAt;
}

void FocusTracker::settle() {
    forgetVanished();
    if (!m_candidate.isNull() && !m_connection.isSilent(m_candidate.bus)) {
        adopt(std::exchange(m_candidate, {}));
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
    // A minimised window of Chromium still calls itself active.
    return !states || (!states->has(State::iconified) && (states->has(State::active) || window == m_window));
}

void FocusTracker::adoptOwn(const Handle &element) {
    m_reader.reset();
    m_focus = {element, nullptr, nullptr};
    m_lostSince.reset();
    m_lookPause = otherWindowPause;
    m_lookAt = Clock::now() + m_lookPause;
    publish();
}

void FocusTracker::adopt(const ElementRef &ref) {
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
    auto reader = std::make_unique<FieldReader>(handle);
    auto ancestry = readAncestry(m_connection, handle, Clock::now() + climbTime);
    auto snapshot = reader->read(m_connection, TextWanted::value, {}, Clock::now() + readTime);
    if (!ancestry || !snapshot.isAnswered) {
        // Hung applications are asked again once they answer; the focus has left the other one all the same.
        if (m_connection.isSilent(ref.bus)) {
            m_candidate = ref;
            drop();
        }
        return;
    }
    const auto *window = ancestry->window();
    if (!snapshot.kind.states.has(State::focused) ||
        (window != nullptr && !isWindowActive(window->element.ref, window->kind.states))) {
        m_mustConfirm = true;
        return;
    }
    if (window != nullptr) {
        m_windows[ref.bus] = window->element.ref;
        wake(window->element.ref);
    }
    m_reader = std::move(reader);
    m_focus = {handle, std::make_shared<const FieldSnapshot>(std::move(snapshot)),
               std::make_shared<const Ancestry>(std::move(*ancestry))};
    m_lostSince.reset();
    m_lookPause = newElementPause;
    m_lookAt = Clock::now() + m_lookPause;
    publish();
}

const Focus &FocusTracker::refresh(TextWanted wanted) {
    if (m_reader == nullptr) {
        return m_focus;
    }
    const auto *window = m_focus.ancestry->window();
    auto snapshot = m_reader->read(m_connection, wanted, window != nullptr ? window->element.ref : ElementRef{},
                                   Clock::now() + readTime);
    judge(snapshot);
    if (m_focus.element && snapshot.isAnswered) {
        m_focus.snapshot = std::make_shared<const FieldSnapshot>(std::move(snapshot));
        publish();
    }
    return m_focus;
}

// Whether the element still has the focus, by what was just read of it. Without an answer nothing changes.
void FocusTracker::judge(const FieldSnapshot &snapshot) {
    if (snapshot.isGone) {
        drop();
        return;
    }
    if (!snapshot.isAnswered) {
        m_lostSince.reset();
        return;
    }
    const auto *window = m_focus.ancestry->window();
    const bool isFocused = snapshot.kind.states.has(State::focused) &&
                           (window == nullptr || isWindowActive(window->element.ref, snapshot.windowStates));
    if (isFocused) {
        m_lostSince.reset();
    } else if (!m_lostSince) {
        m_lostSince = Clock::now();
    } else if (Clock::now() - *m_lostSince >= grace) {
        drop();
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
    auto ancestry = std::optional(*m_focus.ancestry);
    if (!refreshAncestry(m_connection, *ancestry, Clock::now() + readTime)) {
        ancestry = readAncestry(m_connection, m_focus.ancestry->element, Clock::now() + climbTime);
    }
    if (!ancestry) {
        return nullptr;
    }
    m_focus.ancestry = std::make_shared<const Ancestry>(std::move(*ancestry));
    publish();
    return m_focus.ancestry;
}

} // namespace platform::desktop::atspi
