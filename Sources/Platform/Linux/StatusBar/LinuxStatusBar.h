// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/LifeToken.h"
#include "Platform/StatusBar.h"

#include <memory>
#include <optional>

class QDBusServiceWatcher;
class QTimer;

namespace platform::desktop {

/// The desktop's tray: a host of status notifiers on the session bus, whose watcher may be up before it, or on X11 a
/// window that icons are embedded in. Qt chooses between the two with its first icon and stays with its choice, so the
/// one that is there first is the one that counts. A panel that serves both starts them one after the other: an
/// embedding tray that has only just appeared counts a moment later.
class LinuxStatusBar final : public StatusBar {
  public:
    /// hasEmbeddingTray: whether the window system has a tray of the embedding kind now.
    explicit LinuxStatusBar(MainQueue &mainQueue, bool hasEmbeddingTray = false);
    ~LinuxStatusBar() override;

    [[nodiscard]] bool isAvailable() const override { return m_isAvailable; }
    [[nodiscard]] RegistrationHandle onChange(std::function<void()> changed) override;
    void tell(const QString &title, const QString &text) override;
    /// To be told when a tray of the embedding kind comes or goes.
    void embeddingTrayChanged(bool isThere);

  private:
    void watchNotifiers();
    void askForNotifiers();
    void update();

    MainQueue &m_mainQueue;
    bool m_isAvailable = false;
    /// Whether the session bus has answered, or there is none.
    bool m_busHasAnswered = false;
    bool m_hasNotifiers = false;
    bool m_hasTray;
    /// Which of the two Qt uses; absent until there was one.
    std::optional<bool> m_usesNotifiers;
    std::function<void()> m_changed;
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
    /// Started by signals of the bus, which can only call slots.
    std::unique_ptr<QTimer> m_ask;
    int m_timesAsked = 0;
    LifeToken m_life;
};

} // namespace platform::desktop
