// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Linux/XClient.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <array>
#include <stdexcept>
#include <string_view>

using namespace platform::desktop;

namespace quillory::test {
namespace {
constexpr xcb_keycode_t endMark = 53; // the X key
} // namespace

XClient::XClient() : m_connection(X11Connection::open()) {
    xcb_connection_t *c = m_connection->get();
    (void)m_connection->reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(c, 2, 0));
    m_firstInputEvent = m_connection->firstEvent(&xcb_input_id);
    const auto devices = m_connection->reply(xcb_input_xi_query_device_reply, xcb_input_xi_query_device(c, 0));
    for (auto device = xcb_input_xi_query_device_infos_iterator(devices.get()); device.rem > 0;
         xcb_input_xi_device_info_next(&device)) {
        const std::string_view name(xcb_input_xi_device_info_name(device.data));
        m_keyboard = name.starts_with("Xvfb keyboard") ? device.data->deviceid : m_keyboard;
    }
    m_window = xcb_generate_id(c);
    const std::uint32_t values[] = {1, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, m_window, m_connection->root(), 0, 0, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values);
    xcb_map_window(c, m_window);
    waitForWindowManager();
    const bool isFocused = waitUntil([&] {
        xcb_set_input_focus(c, XCB_INPUT_FOCUS_NONE, m_window, XCB_CURRENT_TIME);
        return m_connection->reply(xcb_get_input_focus_reply, xcb_get_input_focus(c))->focus == m_window;
    });
    if (!isFocused || m_keyboard == 0) {
        throw std::runtime_error("no focus or no keyboard");
    }
}

/// A window manager that is still starting takes the focus away again, and may overlook windows. It is up once it
/// answers a question.
void XClient::waitForWindowManager() {
    std::array<xcb_client_message_event_t, 1> question{};
    question[0].response_type = XCB_CLIENT_MESSAGE;
    question[0].format = 32;
    question[0].window = m_window;
    question[0].type = m_connection->atom("_NET_REQUEST_FRAME_EXTENTS");
    const xcb_atom_t answer = m_connection->atom("_NET_FRAME_EXTENTS");
    waitUntil([&] {
        xcb_send_event(m_connection->get(), 0, m_connection->root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char *>(question.data()));
        return !m_connection->values(m_connection->askValues(m_window, answer)).empty();
    });
}

xcb_window_t XClient::open(const QRect &pixels) {
    xcb_connection_t *c = m_connection->get();
    const xcb_window_t window = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, m_connection->root(), static_cast<std::int16_t>(pixels.x()),
                      static_cast<std::int16_t>(pixels.y()), static_cast<std::uint16_t>(pixels.width()),
                      static_cast<std::uint16_t>(pixels.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    const std::uint32_t hints[18] = {3}; // the user chose place and size
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32, 18,
                        hints);
    xcb_map_window(c, window);
    m_connection->flush();
    return window;
}

void XClient::setNumbers(xcb_window_t window, const char *property, const std::vector<std::uint32_t> &numbers) {
    xcb_change_property(m_connection->get(), XCB_PROP_MODE_REPLACE, window, m_connection->atom(property),
                        XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(numbers.size()), numbers.data());
    m_connection->flush();
}

void XClient::fakeInput(int type, xcb_keycode_t key, int device) {
    xcb_test_fake_input(m_connection->get(), static_cast<std::uint8_t>(type), key, XCB_CURRENT_TIME, XCB_NONE, 0, 0,
                        static_cast<std::uint8_t>(device));
    m_connection->sync();
}

void XClient::finger(xcb_keycode_t key, bool down) {
    fakeInput(m_firstInputEvent + (down ? XCB_INPUT_DEVICE_KEY_PRESS : XCB_INPUT_DEVICE_KEY_RELEASE), key, m_keyboard);
}

void XClient::tap(xcb_keycode_t key) {
    finger(key, true);
    finger(key, false);
}

void XClient::fake(xcb_keycode_t key, bool down) {
    fakeInput(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, key, 0);
}

std::string XClient::keysUntilEnd() {
    std::string keys;
    tap(endMark);
    const bool ended = spinUntil([&] {
        while (const X11Event event{xcb_poll_for_event(m_connection->get())}) {
            const auto &key = eventAs<xcb_key_press_event_t>(*event);
            if (key.detail == endMark && eventType(*event) == XCB_KEY_RELEASE) {
                return true;
            }
            const bool isPress = eventType(*event) == XCB_KEY_PRESS;
            if (key.detail != endMark && (isPress || eventType(*event) == XCB_KEY_RELEASE)) {
                const int modifiers = key.state & 0xFF;
                keys += (keys.empty() ? "" : " ") + std::string(isPress ? "+" : "-") + std::to_string(key.detail) +
                        (isPress && modifiers != 0 ? "^" + std::to_string(modifiers) : "");
            }
        }
        return false;
    });
    return ended ? keys : keys + " (no end)";
}

int XClient::modifiers() {
    const auto question = xcb_query_pointer(m_connection->get(), m_connection->root());
    return m_connection->reply(xcb_query_pointer_reply, question)->mask & 0xFF;
}

} // namespace quillory::test
