// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/X11/X11Connection.h"
#include "RealDesktop/ChildProcess.h"

#include <QCoreApplication>
#include <QRect>
#include <QTimer>

#include <string>

namespace quillory::test {

/// Waits for a condition while the program's own event loop runs.
template <typename Condition> bool spinUntil(Condition condition, int milliseconds = 10'000) {
    const long long end = millisecondsNow() + milliseconds;
    QTimer wake;
    wake.start(5);
    while (!condition()) {
        if (millisecondsNow() > end) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

/// Another program on the display: a window that has the focus and notes the keys it gets, and fingers on the keyboard.
class XClient {
  public:
    XClient();

    /// Opens another window, which the window manager manages, at a place that the user has chosen.
    xcb_window_t open(const QRect &pixels);
    /// Sets a property of a window that is a list of numbers.
    void setNumbers(xcb_window_t window, const char *property, const std::vector<std::uint32_t> &numbers);
    /// Presses (true) or releases a key on the display's real keyboard.
    void finger(xcb_keycode_t key, bool down);
    void tap(xcb_keycode_t key);
    /// The same by way of the test extension, as an on-screen keyboard does.
    void fake(xcb_keycode_t key, bool down);
    /// The keys that the window got since the last call, up to and with the release of the end mark, which is typed
    /// for that: "+38 -38" for a press and release of key 38, with "^5" for modifiers 5 in effect at a press.
    std::string keysUntilEnd();
    /// The modifiers and locks in effect.
    [[nodiscard]] int modifiers();
    platform::desktop::X11Connection &connection() { return *m_connection; }
    [[nodiscard]] xcb_window_t window() const { return m_window; }

  private:
    void waitForWindowManager();
    void fakeInput(int type, xcb_keycode_t key, int device);

    std::unique_ptr<platform::desktop::X11Connection> m_connection;
    xcb_window_t m_window = XCB_NONE;
    int m_firstInputEvent = 0;
    int m_keyboard = 0;
};

} // namespace quillory::test
