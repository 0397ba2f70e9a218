// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Applications/WindowActivation.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

namespace platform::desktop {

namespace {
struct Free {
    void operator()(void *reply) const { std::free(reply); }
};
template <typename Reply> using ReplyPointer = std::unique_ptr<Reply, Free>;

xcb_intern_atom_cookie_t askForAtom(xcb_connection_t *connection, std::string_view name) {
    return xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(name.size()), name.data());
}

xcb_atom_t atom(xcb_connection_t *connection, xcb_intern_atom_cookie_t cookie) {
    const ReplyPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_get_property_cookie_t askForNumbers(xcb_connection_t *connection, xcb_window_t window, xcb_atom_t property) {
    constexpr std::uint32_t mostNumbers = 4096;
    return xcb_get_property(connection, 0, window, property, XCB_ATOM_ANY, 0, mostNumbers);
}

std::vector<std::uint32_t> numbers(xcb_connection_t *connection, xcb_get_property_cookie_t cookie) {
    const ReplyPointer<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 32) {
        return {};
    }
    const auto *const first = static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

struct Atoms {
    explicit Atoms(xcb_connection_t *connection) {
        const auto askedStacking = askForAtom(connection, "_NET_CLIENT_LIST_STACKING");
        const auto askedPid = askForAtom(connection, "_NET_WM_PID");
        const auto askedActive = askForAtom(connection, "_NET_ACTIVE_WINDOW");
        stacking = atom(connection, askedStacking);
        pid = atom(connection, askedPid);
        active = atom(connection, askedActive);
    }
    xcb_atom_t stacking;
    xcb_atom_t pid;
    xcb_atom_t active;
};

/// The windows of a process, the topmost first.
std::vector<xcb_window_t> windowsOf(xcb_connection_t *connection, const Atoms &atoms, qint32 pid,
                                    std::vector<xcb_window_t> stacked) {
    std::ranges::reverse(stacked);
    std::vector<xcb_get_property_cookie_t> asked;
    asked.reserve(stacked.size());
    for (const xcb_window_t window : stacked) {
        asked.push_back(askForNumbers(connection, window, atoms.pid));
    }
    std::vector<xcb_window_t> windows;
    for (std::size_t i = 0; i < stacked.size(); ++i) {
        if (numbers(connection, asked[i]) == std::vector{static_cast<std::uint32_t>(pid)}) {
            windows.push_back(stacked[i]);
        }
    }
    return windows;
}

void sendActivation(xcb_connection_t *connection, xcb_window_t root, xcb_window_t window, const Atoms &atoms) {
    // As a pager asks, on the user's behalf; a plain application's request may be ignored.
    constexpr std::uint32_t fromPager = 2;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atoms.active;
    event.data.data32[0] = fromPager;
    event.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(connection, 0, root, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&event));
    xcb_flush(connection);
}
} // namespace

void activateWindowOf(xcb_connection_t *connection, qint32 pid) {
    const xcb_screen_iterator_t screen = xcb_setup_roots_iterator(xcb_get_setup(connection));
    if (xcb_connection_has_error(connection) != 0 || screen.rem == 0) {
        return;
    }
    const xcb_window_t root = screen.data->root;
    const Atoms atoms(connection);
    const auto askedStacking = askForNumbers(connection, root, atoms.stacking);
    const auto askedActive = askForNumbers(connection, root, atoms.active);
    std::vector<xcb_window_t> stacked = numbers(connection, askedStacking);
    const std::vector<xcb_window_t> active = numbers(connection, askedActive);
    const std::vector<xcb_window_t> windows = windowsOf(connection, atoms, pid, std::move(stacked));
    const bool isActive = !active.empty() && std::ranges::find(windows, active.front()) != windows.end();
    if (!windows.empty() && !isActive) {
        sendActivation(connection, root, windows.front(), atoms);
    }
}

} // namespace platform::desktop
