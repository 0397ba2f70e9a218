// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/Keys/X11KeyPoster.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <string_view>

namespace platform::desktop {

namespace {

template <typename Call> void forEachKey(const KeysDown &keys, Call call) {
    for (std::size_t code = 0; code < keys.size(); ++code) {
        if (keys[code]) {
            call(static_cast<xcb_keycode_t>(code));
        }
    }
}

KeysDown keysOf(const xcb_input_query_device_state_reply_t &state) {
    KeysDown down;
    for (auto part = xcb_input_query_device_state_classes_iterator(&state); part.rem > 0;
         xcb_input_input_state_next(&part)) {
        if (part.data->class_id == XCB_INPUT_INPUT_CLASS_KEY) {
            const auto *keys = reinterpret_cast<const xcb_input_key_state_t *>(part.data);
            down |= keysDownFrom(keys->keys);
        }
    }
    return down;
}

bool isTestDevice(const xcb_input_xi_device_info_t &device) {
    const std::string_view name(xcb_input_xi_device_info_name(&device),
                                static_cast<std::size_t>(xcb_input_xi_device_info_name_length(&device)));
    return name.find("XTEST") != std::string_view::npos;
}

} // namespace

X11KeyPoster::X11KeyPoster(X11Connection &connection, X11Keyboard &keyboard, X11EventTaps &taps)
    : m_connection(connection), m_keyboard(keyboard), m_taps(taps) {
    m_canType = connection.has(&xcb_test_id);
    if (connection.has(&xcb_input_id)) {
        const auto version = xcb_input_xi_query_version(connection.get(), 2, 0);
        m_canTellHolders = connection.reply(xcb_input_xi_query_version_reply, version) != nullptr;
    }
}

bool X11KeyPoster::userHoldsKeys() {
    KeysDown watched = m_keyboard.heldModifierKeys();
    if (const auto swallowed = m_taps.lastSwallowedKey()) {
        watched.set(*swallowed);
    }
    return (m_keyboard.keysDown() & watched).any();
}

bool X11KeyPoster::postKey(KeyCode key, EventFlags flags) {
    const std::vector<xcb_keycode_t> codes = m_keyboard.keyCodes(key);
    if (codes.empty() || !m_canType || m_connection.isBroken()) {
        return false;
    }
    m_taps.releaseKeyboard();
    // Keeps all other clients from acting, so that neither the focus nor a key can change between a press and its
    // release. It does not stop the user's fingers.
    xcb_grab_server(m_connection.get());
    const Holders before = holders();
    const KeysDown down = m_keyboard.keysDown();
    const KeysDown lifted = modifiersToLift(flags, down);
    std::vector<xcb_keycode_t> added;
    for (const int modifier : X11Keyboard::modifiers(flags)) {
        added.push_back(unheldKey(modifier, down));
    }
    forEachKey(lifted, [this](xcb_keycode_t code) { release(code); });
    std::ranges::for_each(added, [this](xcb_keycode_t code) { press(code); });
    press(codes.front());
    release(codes.front());
    std::for_each(added.rbegin(), added.rend(), [this](xcb_keycode_t code) { release(code); });
    giveBack(lifted, before);
    xcb_ungrab_server(m_connection.get());
    m_connection.sync();
    return !m_connection.isBroken();
}

KeysDown X11KeyPoster::modifiersToLift(EventFlags flags, const KeysDown &down) const {
    KeysDown lifted = down & m_keyboard.heldModifierKeys();
    for (const int modifier : X11Keyboard::modifiers(flags)) {
        for (const xcb_keycode_t code : m_keyboard.modifierKeys(modifier)) {
            lifted.reset(code);
        }
    }
    return lifted;
}

/// A key for a modifier, if possible not the one that the user holds: that one may come up at any moment, and the rest
/// would be typed as plain letters.
xcb_keycode_t X11KeyPoster::unheldKey(int modifier, const KeysDown &down) const {
    const auto &keys = m_keyboard.modifierKeys(modifier);
    const auto unheld = std::ranges::find_if(keys, [&](xcb_keycode_t code) { return !down[code]; });
    if (unheld != keys.end()) {
        return *unheld;
    }
    return keys.empty() ? xcb_keycode_t{0} : keys.front();
}

/// Presses the lifted keys again, but only those that are certainly still held: a key that came up in the meantime
/// would be stuck until its next press.
void X11KeyPoster::giveBack(const KeysDown &lifted, const Holders &before) {
    if (lifted.none()) {
        return;
    }
    const KeysDown held = lifted & (holders().fingers | before.programs);
    forEachKey(held, [this](xcb_keycode_t code) { press(code); });
    const KeysDown letGo = held & ~(holders().fingers | before.programs);
    forEachKey(letGo, [this](xcb_keycode_t code) { release(code); });
}

X11KeyPoster::Holders X11KeyPoster::holders() const {
    Holders result;
    if (!m_canTellHolders) {
        return result;
    }
    const auto devices = m_connection.reply(xcb_input_xi_query_device_reply,
                                            xcb_input_xi_query_device(m_connection.get(), XCB_INPUT_DEVICE_ALL));
    if (!devices) {
        return result;
    }
    std::vector<std::pair<KeysDown *, xcb_input_query_device_state_cookie_t>> questions;
    for (auto device = xcb_input_xi_query_device_infos_iterator(devices.get()); device.rem > 0;
         xcb_input_xi_device_info_next(&device)) {
        if (device.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD) {
            const auto id = static_cast<std::uint8_t>(device.data->deviceid);
            questions.emplace_back(isTestDevice(*device.data) ? &result.programs : &result.fingers,
                                   xcb_input_query_device_state(m_connection.get(), id));
        }
    }
    for (const auto &[keys, question] : questions) {
        if (const auto state = m_connection.reply(xcb_input_query_device_state_reply, question)) {
            *keys |= keysOf(*state);
        }
    }
    return result;
}

void X11KeyPoster::press(xcb_keycode_t code) {
    // The server drops a press of a modifier that its XTest keyboard still holds, and a key that was given back stays
    // down there even after the fingers have let go.
    release(code);
    send(XCB_KEY_PRESS, code);
}

void X11KeyPoster::release(xcb_keycode_t code) {
    send(XCB_KEY_RELEASE, code);
}

void X11KeyPoster::send(std::uint8_t type, xcb_keycode_t code) {
    if (code == 0) {
        return; // a modifier that the keyboard does not have
    }
    xcb_test_fake_input(m_connection.get(), type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

} // namespace platform::desktop
