// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Driver/Demo.h"
#include "Driver/Tours.h"

#include <cstdlib>
#include <iostream>

namespace quillory::demo {

namespace {

/// Reads or sets the session's accessibility switch. Returns what dbus-send printed; empty on failure.
QByteArray accessibilityStatus(const QStringList &request) {
    QProcess bus;
    bus.start(QStringLiteral("dbus-send"),
              QStringList{QStringLiteral("--session"), QStringLiteral("--print-reply"),
                          QStringLiteral("--dest=org.a11y.Bus"), QStringLiteral("/org/a11y/bus")} +
                  request);
    return bus.waitForFinished() && bus.exitCode() == 0 ? bus.readAllStandardOutput() : QByteArray();
}

void setAccessibility(bool enabled) {
    accessibilityStatus(
        {QStringLiteral("org.freedesktop.DBus.Properties.Set"), QStringLiteral("string:org.a11y.Status"),
         QStringLiteral("string:IsEnabled"),
         QStringLiteral("variant:boolean:") + (enabled ? QStringLiteral("true") : QStringLiteral("false"))});
}

/// Switches accessibility on for this session while the demo runs, if it was off.
class AccessibilityOn {
  public:
    AccessibilityOn() {
        const QByteArray answer =
            accessibilityStatus({QStringLiteral("org.freedesktop.DBus.Properties.Get"),
                                 QStringLiteral("string:org.a11y.Status"), QStringLiteral("string:IsEnabled")});
        if (answer.isEmpty()) {
            std::cout << "This session's accessibility bus does not answer (package at-spi2-core)." << std::endl;
        }
        m_switched = answer.contains("boolean false");
        if (m_switched) {
            std::cout << "Accessibility was off in this session: switching it on while the demo runs." << std::endl;
            setAccessibility(true);
        }
    }
    ~AccessibilityOn() {
        if (m_switched) {
            setAccessibility(false);
        }
    }
    AccessibilityOn(const AccessibilityOn &) = delete;
    AccessibilityOn &operator=(const AccessibilityOn &) = delete;

  private:
    bool m_switched = false;
};

} // namespace

int showOnDesktop() {
    // Only X11 windows can be placed, and see where other windows are.
    qputenv("QT_QPA_PLATFORM", "xcb");
    const AccessibilityOn accessibility;
    Demo demo({}, true);
    std::cout << "\nA chat window is open. Everything stays on this machine, and nothing is sent.\n"
                 "  1. Click into its message box and type:  helo can u send me the price list\n"
                 "  2. Pause for half a second: a card with a better wording appears above the box.\n"
                 "  3. Tab puts it into the box. Esc drops it. Typing on hides it. Enter sends the message, as ever.\n"
                 "  4. The other side answers with a question, and a reply is drafted from the demo's FAQ.\n"
                 "     From your second message on, two models answer side by side.\n"
                 "  5. The answers come from a small local service that goes by rules; a real model does better.\n"
                 "  6. Close the chat window to end the demo.\n"
              << std::endl;
    bool isComparing = false;
    while (!stopRequested && demo.chatIsOpen()) {
        if (!isComparing && demo.sentMessages().size() >= 2) {
            demo.changeSetting(QStringLiteral("compareMode"), QStringLiteral("true"));
            isComparing = true;
        }
        test::sleepBriefly();
    }
    return EXIT_SUCCESS;
}

} // namespace quillory::demo
