// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/LifeToken.h"
#include "Platform/Platform.h"
#include "Quillory/Monitor/MonitorAssembly.h"

#include <functional>
#include <memory>

class QAction;

namespace quillory::ui {

class MenuWindow;
class SettingsWindow;
class StatusItem;
class StatusMenu;

/// What the delegate leaves to others. main() fills it in; an empty function is not called.
struct AppActions {
    /// Updates; without a check the menu offers none.
    std::function<void()> startPeriodicChecks;
    std::function<void(bool userInitiated)> check;
    /// Starts the set-up in a process of its own, if something is missing that it can put right.
    std::function<void()> launchSetup;
};

/// Starts everything in its order and owns it while the program runs. One per process, main thread only.
class AppDelegate {
  public:
    /// Makes the typing monitor, and with it the settings and the suggestion panel. Starts nothing. The desktop's
    /// services outlive the delegate.
    explicit AppDelegate(const platform::Platform &desktop, AppActions actions = {});
    ~AppDelegate();

    /// Called once, when the event loop is running.
    void applicationDidFinishLaunching();
    /// The user started the program again: shows the settings, or the menu where there is no tray to show it.
    void applicationDidReopen();

  private:
    void setUpStatusItem();
    void menuNeedsUpdate();
    void openAccessibilitySettings();
    void openSettings();
    void openMenu();
    void tellOfMissingTray();
    [[nodiscard]] bool lacksSetup() const;
    /// Changes a setting that is on or off to the opposite.
    void flip(const QString &key);
    void launchSetup();

    platform::Platform m_desktop;
    AppActions m_actions;
    MonitorAssembly m_assembly;
    std::unique_ptr<StatusMenu> m_menu;
    QAction *m_enabledItem = nullptr;
    QAction *m_compareItem = nullptr;
    QAction *m_accessItem = nullptr;
    std::unique_ptr<StatusItem> m_statusItem;
    /// Both are created when first shown, and only hidden when closed.
    std::unique_ptr<SettingsWindow> m_settingsWindow;
    std::unique_ptr<MenuWindow> m_menuWindow;
    platform::LifeToken m_life;
};

} // namespace quillory::ui
