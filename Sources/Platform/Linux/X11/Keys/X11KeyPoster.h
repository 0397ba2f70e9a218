// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/X11/Keys/X11EventTaps.h"

namespace platform::desktop {

/// Types keys through the XTest extension, so that they look like those of a keyboard. ../README.md says how held
/// modifiers are treated.
class X11KeyPoster final : public KeyPoster {
  public:
    X11KeyPoster(X11Connection &connection, X11Keyboard &keyboard, X11EventTaps &taps);

    [[nodiscard]] bool userHoldsKeys() override;
    bool postKey(KeyCode key, EventFlags flags) override;

  private:
    /// The keys that are held by fingers, and by programs (an on-screen keyboard, a remote desktop) through XTest.
    struct Holders {
        KeysDown fingers;
        KeysDown programs;
    };

    [[nodiscard]] Holders holders() const;
    [[nodiscard]] xcb_keycode_t unheldKey(int modifier, const KeysDown &down) const;
    [[nodiscard]] KeysDown modifiersToLift(EventFlags flags, const KeysDown &down) const;
    void giveBack(const KeysDown &lifted, const Holders &before);
    void press(xcb_keycode_t code);
    void release(xcb_keycode_t code);
    void send(std::uint8_t type, xcb_keycode_t code);

    X11Connection &m_connection;
    X11Keyboard &m_keyboard;
    X11EventTaps &m_taps;
    bool m_canType = false;
    bool m_canTellHolders = false;
};

} // namespace platform::desktop
