// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/Keys/X11Keyboard.h"

#include <algorithm>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace platform::desktop {

namespace {

struct KeyPosition {
    KeyCode key;
    /// Where the key is on every keyboard of an X server with evdev codes (those of the kernel plus 8).
    xcb_keycode_t position;
    /// The meaning by which the key is found if the user has moved it; letters are found by position alone.
    xcb_keysym_t meaning;
};
constexpr std::array keyPositions{
    KeyPosition{keyCode::a, 38, XKB_KEY_NoSymbol},
    KeyPosition{keyCode::v, 55, XKB_KEY_NoSymbol},
    KeyPosition{keyCode::tab, 23, XKB_KEY_Tab},
    KeyPosition{keyCode::escape, 9, XKB_KEY_Escape},
};

struct FlagModifier {
    EventFlags flag;
    int modifier;
};
/// Programs of this desktop select all and paste with Control, so that is "command"; the rest share the others.
constexpr std::array flagModifiers{
    FlagModifier{eventFlag::shift, XCB_MAP_INDEX_SHIFT},
    FlagModifier{eventFlag::command, XCB_MAP_INDEX_CONTROL},
    FlagModifier{eventFlag::option, XCB_MAP_INDEX_1},
    FlagModifier{eventFlag::control, XCB_MAP_INDEX_4},
};

constexpr std::uint16_t maskOf(int modifier) {
    return static_cast<std::uint16_t>(1U << static_cast<unsigned>(modifier));
}

} // namespace

KeysDown keysDownFrom(const std::uint8_t *map) {
    KeysDown down;
    for (std::size_t code = 0; code < down.size(); ++code) {
        down[code] = ((map[code / 8] >> (code % 8)) & 1) != 0;
    }
    return down;
}

X11Keyboard::X11Keyboard(X11Connection &connection) : m_connection(connection) {
    read();
    m_events = m_connection.onEvent([this](const xcb_generic_event_t &event) {
        if (eventType(event) == XCB_MAPPING_NOTIFY) {
            read();
        }
    });
}

void X11Keyboard::read() {
    const xcb_setup_t *setup = xcb_get_setup(m_connection.get());
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto mapping = xcb_get_keyboard_mapping(m_connection.get(), setup->min_keycode, count);
    const auto modifiers = xcb_get_modifier_mapping(m_connection.get());
    m_mapping = m_connection.reply(xcb_get_keyboard_mapping_reply, mapping);
    if (const auto map = m_connection.reply(xcb_get_modifier_mapping_reply, modifiers)) {
        readModifiers(*map);
    }
}

void X11Keyboard::readModifiers(const xcb_get_modifier_mapping_reply_t &map) {
    const xcb_keycode_t *codes = xcb_get_modifier_mapping_keycodes(&map);
    m_numLock = m_scrollLock = 0;
    m_heldModifierKeys.reset();
    for (int modifier = 0; modifier < static_cast<int>(m_modifierKeys.size()); ++modifier) {
        const xcb_keycode_t *first = codes + static_cast<std::ptrdiff_t>(modifier) * map.keycodes_per_modifier;
        auto &keys = m_modifierKeys[static_cast<std::size_t>(modifier)];
        keys.assign(first, first + map.keycodes_per_modifier);
        std::erase(keys, xcb_keycode_t{0});
        const auto has = [&](xcb_keysym_t wanted) {
            return std::ranges::any_of(keys, [&](xcb_keycode_t code) { return keysym(code) == wanted; });
        };
        m_numLock = has(XKB_KEY_Num_Lock) ? maskOf(modifier) : m_numLock;
        m_scrollLock = has(XKB_KEY_Scroll_Lock) ? maskOf(modifier) : m_scrollLock;
        const bool isLock = modifier == XCB_MAP_INDEX_LOCK || ((m_numLock | m_scrollLock) & maskOf(modifier)) != 0;
        for (const xcb_keycode_t code : keys) {
            m_heldModifierKeys[code] = m_heldModifierKeys[code] || !isLock;
        }
    }
}

/// What a key means without modifiers in the first layout.
xcb_keysym_t X11Keyboard::keysym(xcb_keycode_t code) const {
    const std::ptrdiff_t index = code - xcb_get_setup(m_connection.get())->min_keycode;
    if (!m_mapping || index < 0 ||
        index * m_mapping->keysyms_per_keycode >= static_cast<std::ptrdiff_t>(m_mapping->length)) {
        return XKB_KEY_NoSymbol;
    }
    return xcb_get_keyboard_mapping_keysyms(m_mapping.get())[index * m_mapping->keysyms_per_keycode];
}

std::vector<xcb_keycode_t> X11Keyboard::keyCodes(KeyCode key) const {
    const auto *known = std::ranges::find(keyPositions, key, &KeyPosition::key);
    if (known == keyPositions.end()) {
        return {};
    }
    std::vector<xcb_keycode_t> codes;
    for (int code = 8; known->meaning != XKB_KEY_NoSymbol && code < 256; ++code) {
        if (keysym(static_cast<xcb_keycode_t>(code)) == known->meaning) {
            codes.push_back(static_cast<xcb_keycode_t>(code));
        }
    }
    if (codes.empty()) {
        codes.push_back(known->position);
    }
    return codes;
}

std::optional<KeyCode> X11Keyboard::key(xcb_keycode_t code) const {
    for (const KeyPosition &known : keyPositions) {
        const auto codes = keyCodes(known.key);
        if (std::ranges::find(codes, code) != codes.end()) {
            return known.key;
        }
    }
    return std::nullopt;
}

std::vector<std::uint16_t> X11Keyboard::lockCombinations() const {
    std::vector<std::uint16_t> combinations{0};
    for (const std::uint16_t lock : {std::uint16_t{XCB_MOD_MASK_LOCK}, m_numLock, m_scrollLock}) {
        if (lock == 0 || (combinations.back() & lock) != 0) {
            continue;
        }
        for (std::size_t i = 0, count = combinations.size(); i < count; ++i) {
            combinations.push_back(combinations[i] | lock);
        }
    }
    return combinations;
}

EventFlags X11Keyboard::flags(std::uint16_t state) {
    EventFlags flags = 0;
    for (const auto &[flag, modifier] : flagModifiers) {
        flags |= (state & maskOf(modifier)) != 0 ? flag : 0;
    }
    return flags;
}

std::vector<int> X11Keyboard::modifiers(EventFlags flags) {
    std::vector<int> result;
    for (const auto &[flag, modifier] : flagModifiers) {
        if ((flags & flag) != 0) {
            result.push_back(modifier);
        }
    }
    return result;
}

const std::vector<xcb_keycode_t> &X11Keyboard::modifierKeys(int modifier) const {
    return m_modifierKeys[static_cast<std::size_t>(modifier)];
}

KeysDown X11Keyboard::keysDown() const {
    const auto answer = m_connection.reply(xcb_query_keymap_reply, xcb_query_keymap(m_connection.get()));
    return answer ? keysDownFrom(answer->keys) : KeysDown{};
}

} // namespace platform::desktop
