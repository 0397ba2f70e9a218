// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/Keys/X11EventTaps.h"

namespace platform::desktop {

class X11EventTaps::Tap final : public EventTap {
  public:
    Tap(X11EventTaps &taps, TapCallback callback) : m_taps(taps), m_callback(std::move(callback)) {}
    ~Tap() override { m_taps.disarm(*this); }
    Tap(const Tap &) = delete;
    Tap &operator=(const Tap &) = delete;

    bool setEnabled(bool enabled) override {
        if (enabled) {
            return m_taps.arm(*this);
        }
        m_taps.disarm(*this);
        return true;
    }
    [[nodiscard]] TapVerdict tell(const TapEvent &event) const { return m_callback(event); }

  private:
    X11EventTaps &m_taps;
    TapCallback m_callback;
};

X11EventTaps::X11EventTaps(X11Connection &connection, X11Keyboard &keyboard)
    : m_connection(connection), m_keyboard(keyboard) {
    m_events = m_connection.onEvent([this](const xcb_generic_event_t &event) { handle(event); });
}

X11EventTaps::~X11EventTaps() {
    ungrab();
    releaseKeyboard();
}

std::unique_ptr<EventTap> X11EventTaps::create(TapCallback callback) {
    auto tap = std::make_unique<Tap>(*this, std::move(callback));
    if (!arm(*tap)) {
        return nullptr;
    }
    disarm(*tap);
    return tap;
}

bool X11EventTaps::arm(Tap &tap) {
    if (m_armed == nullptr && !grab()) {
        return false;
    }
    m_armed = &tap;
    return true;
}

void X11EventTaps::disarm(Tap &tap) {
    if (m_armed == &tap) {
        m_armed = nullptr;
        ungrab();
        m_connection.sync();
    }
}

bool X11EventTaps::grab() {
    std::vector<xcb_void_cookie_t> questions;
    for (const KeyCode key : {keyCode::tab, keyCode::escape}) {
        for (const xcb_keycode_t code : m_keyboard.keyCodes(key)) {
            m_grabbed.push_back(code);
            for (const std::uint16_t locks : m_keyboard.lockCombinations()) {
                questions.push_back(xcb_grab_key_checked(m_connection.get(), 0, m_connection.root(), locks, code,
                                                         XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_SYNC));
            }
        }
    }
    bool granted = !m_connection.isBroken();
    for (const xcb_void_cookie_t question : questions) {
        const X11Reply<xcb_generic_error_t> refusal(xcb_request_check(m_connection.get(), question));
        granted = granted && !refusal;
    }
    if (!granted) {
        ungrab();
    }
    return granted;
}

void X11EventTaps::ungrab() {
    for (const xcb_keycode_t code : m_grabbed) {
        xcb_ungrab_key(m_connection.get(), code, m_connection.root(), XCB_MOD_MASK_ANY);
    }
    m_grabbed.clear();
}

/// The keys may have moved with the new mapping.
void X11EventTaps::regrab() {
    if (m_armed == nullptr) {
        return;
    }
    ungrab();
    if (!grab()) {
        (void)std::exchange(m_armed, nullptr)->tell({TapEventType::tapDisabledByUserInput, 0, 0});
    }
}

void X11EventTaps::handle(const xcb_generic_event_t &event) {
    if (eventType(event) == XCB_KEY_PRESS) {
        handlePress(eventAs<xcb_key_press_event_t>(event));
    } else if (eventType(event) == XCB_KEY_RELEASE) {
        handleRelease(eventAs<xcb_key_release_event_t>(event));
    } else if (eventType(event) == XCB_MAPPING_NOTIFY) {
        regrab(); // by the new mapping: the keyboard gets every event first
    }
}

/// The keyboard stands still until allow() is called, so every path must call it.
void X11EventTaps::handlePress(const xcb_key_press_event_t &press) {
    if (m_swallowed == press.detail && m_releasedAt.value_or(press.time) == press.time) {
        // The held key repeats: still the same press.
        m_releasedAt.reset();
        allow(XCB_ALLOW_SYNC_KEYBOARD, press.time);
        return;
    }
    // Any other key, or a press that came after the tap was disarmed, belongs to the application.
    m_swallowed.reset();
    const std::optional<KeyCode> key = m_keyboard.key(press.detail);
    const TapEvent event{TapEventType::keyDown, key.value_or(0), X11Keyboard::flags(press.state)};
    if (key && m_armed != nullptr && m_armed->tell(event) == TapVerdict::swallow) {
        m_swallowed = m_lastSwallowed = press.detail;
        m_releasedAt.reset();
        // Holds back the next key too, whichever it is: until the swallowed key comes up all keys come here, and what
        // the user types meanwhile has to be passed on.
        allow(XCB_ALLOW_SYNC_KEYBOARD, press.time);
    } else {
        allow(XCB_ALLOW_REPLAY_KEYBOARD, press.time);
    }
}

void X11EventTaps::handleRelease(const xcb_key_release_event_t &release) {
    if (m_swallowed != release.detail) {
        allow(XCB_ALLOW_SYNC_KEYBOARD, release.time);
        return;
    }
    // Either the end of the grab, after which the keyboard goes on by itself, or the first half of a repeat, whose
    // press, with the same time, is the one to answer.
    m_releasedAt = release.time;
}

void X11EventTaps::allow(std::uint8_t mode, xcb_timestamp_t time) {
    // With its event's time a late answer cannot release the next press, which has a grab of its own.
    xcb_allow_events(m_connection.get(), mode, time);
    m_connection.flush();
}

void X11EventTaps::releaseKeyboard() {
    m_swallowed.reset();
    xcb_ungrab_keyboard(m_connection.get(), XCB_CURRENT_TIME);
    m_connection.flush();
}

} // namespace platform::desktop
