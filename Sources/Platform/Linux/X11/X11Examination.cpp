// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/X11Examination.h"

#include "Platform/Linux/X11/Keys/X11Keyboard.h"

namespace platform::desktop {

namespace {

QString windowManager(X11Connection &connection) {
    const auto window = connection.values(connection.root(), "_NET_SUPPORTING_WM_CHECK");
    if (window.empty()) {
        return {};
    }
    constexpr std::uint32_t longestName = 64;
    const auto asked = xcb_get_property(connection.get(), 0, window.front(), connection.atom("_NET_WM_NAME"),
                                        connection.atom("UTF8_STRING"), 0, longestName);
    const auto answer = connection.reply(xcb_get_property_reply, asked);
    return answer ? QString::fromUtf8(static_cast<const char *>(xcb_get_property_value(answer.get())),
                                      xcb_get_property_value_length(answer.get()))
                  : QString();
}

/// Grabs a key as Quillory does while cards are up, and releases it at once.
bool canGrab(X11Connection &connection, const X11Keyboard &keyboard, KeyCode key) {
    bool granted = true;
    for (const xcb_keycode_t code : keyboard.keyCodes(key)) {
        for (const std::uint16_t locks : keyboard.lockCombinations()) {
            const auto asked = xcb_grab_key_checked(connection.get(), 0, connection.root(), locks, code,
                                                    XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
            const X11Reply<xcb_generic_error_t> refusal(xcb_request_check(connection.get(), asked));
            granted = granted && !refusal;
        }
        xcb_ungrab_key(connection.get(), code, connection.root(), XCB_MOD_MASK_ANY);
    }
    connection.sync();
    return granted;
}

} // namespace

void examineX11(DesktopFacts &facts) {
    const auto connection = X11Connection::open();
    facts.hasDisplay = connection != nullptr;
    if (!connection) {
        return;
    }
    const X11Keyboard keyboard(*connection);
    facts.windowManager = windowManager(*connection);
    const auto isOwned = [&connection](const QByteArray &selection) {
        return connection->ownerOf(connection->atom(selection)) != XCB_NONE;
    };
    facts.hasTray = isOwned(connection->ofScreen("_NET_SYSTEM_TRAY_S"));
    facts.hasCompositor = isOwned(connection->ofScreen("_NET_WM_CM_S"));
    facts.hasClipboardManager = isOwned("CLIPBOARD_MANAGER");
    facts.canGrabTab = canGrab(*connection, keyboard, keyCode::tab);
    facts.canGrabEscape = canGrab(*connection, keyboard, keyCode::escape);
}

std::set<qint32> processesWithWindows() {
    const auto connection = X11Connection::open();
    if (!connection) {
        return {};
    }
    std::set<qint32> processes;
    const auto windows = connection->values(connection->root(), "_NET_CLIENT_LIST");
    for (const std::uint32_t window : windows) {
        for (const auto pid : connection->values(window, "_NET_WM_PID")) {
            processes.insert(static_cast<qint32>(pid));
        }
    }
    return processes;
}

} // namespace platform::desktop
