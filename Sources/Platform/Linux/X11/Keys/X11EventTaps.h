// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/X11/Keys/X11Keyboard.h"

namespace platform::desktop {

/// Key taps as synchronous grabs of the keys on the root window; the one that was enabled last is asked. Outlives the
/// taps it made. See ../README.md.
class X11EventTaps final : public EventTaps {
  public:
    /// keyboard: made before this, so that it learns of a new mapping first.
    X11EventTaps(X11Connection &connection, X11Keyboard &keyboard);
    ~X11EventTaps() override;
    X11EventTaps(const X11EventTaps &) = delete;
    X11EventTaps &operator=(const X11EventTaps &) = delete;

    [[nodiscard]] std::unique_ptr<EventTap> create(TapCallback callback) override;

    /// The last key that was swallowed. It may be up again.
    [[nodiscard]] std::optional<xcb_keycode_t> lastSwallowedKey() const { return m_lastSwallowed; }
    /// Lets keys reach the focused window again, even while a swallowed key is still down.
    void releaseKeyboard();

  private:
    class Tap;

    bool arm(Tap &tap);
    void disarm(Tap &tap);
    bool grab();
    void ungrab();
    void regrab();
    void handle(const xcb_generic_event_t &event);
    void handlePress(const xcb_key_press_event_t &press);
    void handleRelease(const xcb_key_release_event_t &release);
    void allow(std::uint8_t mode, xcb_timestamp_t time);

    X11Connection &m_connection;
    X11Keyboard &m_keyboard;
    Tap *m_armed = nullptr;
    /// The grabbed key codes, to be given back even if the mapping has changed since.
    std::vector<xcb_keycode_t> m_grabbed;
    /// The key whose press was swallowed and whose repeats and release still have to be.
    std::optional<xcb_keycode_t> m_swallowed;
    std::optional<xcb_keycode_t> m_lastSwallowed;
    /// The time of the swallowed key's release; a press with the very same time is a repeat.
    std::optional<xcb_timestamp_t> m_releasedAt;
    RegistrationHandle m_events;
};

} // namespace platform::desktop
