// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Keys.h"
#include "Platform/Linux/X11/X11Connection.h"

#include <array>
#include <bitset>
#include <optional>

namespace platform::desktop {

/// The keys that are down, by X key code.
using KeysDown = std::bitset<256>;

/// What the X server knows about its keyboard: which key codes stand for which keys and modifiers. Kept up to date.
/// Main thread only.
class X11Keyboard {
  public:
    explicit X11Keyboard(X11Connection &connection);

    /// The X key codes that act as this key under the current mapping. Never empty for a key of namespace keyCode.
    [[nodiscard]] std::vector<xcb_keycode_t> keyCodes(KeyCode key) const;
    /// The key at an X key code; absent when namespace keyCode does not have it.
    [[nodiscard]] std::optional<KeyCode> key(xcb_keycode_t code) const;
    /// Every combination of lock modifiers (Caps Lock, Num Lock, Scroll Lock), the empty one too, as X modifier masks.
    [[nodiscard]] std::vector<std::uint16_t> lockCombinations() const;
    /// The modifiers of an event's state, locks and layout left out.
    [[nodiscard]] static EventFlags flags(std::uint16_t state);
    /// The X modifiers (indices of the modifier map) that a set of flags stands for.
    [[nodiscard]] static std::vector<int> modifiers(EventFlags flags);
    /// The X key codes that switch a modifier on while they are held.
    [[nodiscard]] const std::vector<xcb_keycode_t> &modifierKeys(int modifier) const;
    /// The X key codes of all modifiers that work by being held: not the locks.
    [[nodiscard]] const KeysDown &heldModifierKeys() const { return m_heldModifierKeys; }
    /// The keys that are down now, no matter who presses them. Waits for the X server.
    [[nodiscard]] KeysDown keysDown() const;

  private:
    void read();
    void readModifiers(const xcb_get_modifier_mapping_reply_t &map);
    [[nodiscard]] xcb_keysym_t keysym(xcb_keycode_t code) const;

    X11Connection &m_connection;
    X11Reply<xcb_get_keyboard_mapping_reply_t> m_mapping;
    std::array<std::vector<xcb_keycode_t>, 8> m_modifierKeys;
    KeysDown m_heldModifierKeys;
    std::uint16_t m_numLock = 0;
    std::uint16_t m_scrollLock = 0;
    RegistrationHandle m_events;
};

/// A bit map of keys, as the server sends it.
[[nodiscard]] KeysDown keysDownFrom(const std::uint8_t *map);

} // namespace platform::desktop
