// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/X11/X11Connection.h"
#include "Platform/StatusBar.h"

class QDBusServiceWatcher;
class QTimer;

namespace platform::desktop {

/// The desktop's tray: a host of status notifiers on the session bus, whose watcher may be up before it, or an X11
/// window that icons are embedded in. The toolkit chooses between the two with its first icon and stays with its
/// choice, so the one that is there first is the one that counts. A panel that serves both starts them one after the
/// other: an embedding tray that has only just appeared counts a moment later.
class LinuxStatusBar final : public StatusBar {
  public:
    LinuxStatusBar(MainQueue &mainQueue, X11Connection &connection);
    ~LinuxStatusBar() override;

    [[nodiscard]] bool isAvailable() const override { return m_isAvailable; }
    [[nodiscard]] RegistrationHandle onChange(std::function<void()> changed) override;
    void tell(const QString &title, const QString &text) override;

  private:
    class Listening;
    void watchNotifiers();
    void askForNotifiers();
    void watchTray();
    [[nodiscard]] bool hasTray() const;
    void handle(const xcb_generic_event_t &event);
    void update();

    MainQueue &m_mainQueue;
    X11Connection &m_connection;
    xcb_atom_t m_trayAtom = XCB_NONE;
    std::uint8_t m_selectionEvent = 0;
    bool m_isAvailable = false;
    /// Whether the session bus has said what there is, or there is no session bus.
    bool m_busHasAnswered = false;
    bool m_hasNotifiers = false;
    bool m_hasTray = false;
    /// Which of the two the toolkit has chosen, once it could.
    std::optional<bool> m_usesNotifiers;
    std::function<void()> m_changed;
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
    /// Started by the bus's signals, which call slots only.
    std::unique_ptr<QTimer> m_ask;
    int m_timesAsked = 0;
    RegistrationHandle m_events;
    /// Gone with this, so that what was put off knows.
    std::shared_ptr<bool> m_life = std::make_shared<bool>();
};

} // namespace platform::desktop
