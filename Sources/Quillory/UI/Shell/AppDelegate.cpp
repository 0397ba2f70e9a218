// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Shell/AppDelegate.h"

#include "Platform/MainQueue.h"
#include "Platform/StatusBar.h"
#include "Quillory/Records/FileLog.h"
#include "Quillory/Text.h"
#include "Quillory/UI/Card/SuggestionStackView.h"
#include "Quillory/UI/Form/FormStyle.h"
#include "Quillory/UI/Settings/SettingsWindow.h"
#include "Quillory/UI/Shell/MenuWindow.h"
#include "Quillory/UI/Shell/StatusItem.h"
#include "Quillory/UI/Shell/StatusMenu.h"

#include <QApplication>

#include <cstdio>

namespace quillory::ui {

namespace {
/// At the start of a session the desktop's panel may come up after us.
constexpr std::chrono::seconds patienceForTray{10};
/// Kept in the settings, so that a user whose session starts the program is told only once.
const QString toldOfMissingTray = QStringLiteral("toldOfMissingTray");
/// So that the set-up comes in front of the first windows, and the accessibility bus has had time to start.
constexpr std::chrono::seconds untilSettled{2};
} // namespace

AppDelegate::AppDelegate(const platform::Platform &desktop, AppActions actions)
    : m_desktop(desktop), m_actions(std::move(actions)),
      m_assembly(desktop, [] { return std::make_unique<SuggestionStackView>(); }) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    FormStyle::install(); // alerts have the program's look too
    setUpStatusItem();
    platform::Accessibility &accessibility = m_desktop.accessibility;
    const bool trusted = accessibility.isProcessTrusted();
    FileLog::log(QStringLiteral("launched, accessibility trusted = %1").arg(text::trueOrFalse(trusted)));
    if (!trusted) {
        accessibility.isProcessTrustedWithPrompt();
    }
    m_assembly.monitor.start();
    if (m_actions.startPeriodicChecks) {
        m_actions.startPeriodicChecks();
    }
    if (!m_assembly.settings.isKeySet()) {
        std::fputs("quillory: no OpenRouter API key is set; give one with: quillory setup\n", stderr);
        openSettings();
    }
    if (lacksSetup()) {
        launchSetup();
    }
}

bool AppDelegate::lacksSetup() const {
    return !m_assembly.settings.isKeySet() || !m_desktop.accessibility.isProcessTrusted();
}

void AppDelegate::launchSetup() {
    m_desktop.mainQueue.postAfter(untilSettled, m_life.whileAlive([this] {
        if (m_actions.launchSetup && lacksSetup()) {
            m_actions.launchSetup();
        }
    }));
}

void AppDelegate::setUpStatusItem() {
    m_menu = std::make_unique<StatusMenu>();
    m_enabledItem = m_menu->addToggle(QStringLiteral("Suggestions Enabled"), [this] { flip(settingsKey::enabled); });
    m_compareItem = m_menu->addToggle(QStringLiteral("Compare Two Models"), [this] { flip(settingsKey::compareMode); });
    m_accessItem =
        m_menu->addItem(QStringLiteral("Grant Accessibility Access…"), [this] { openAccessibilitySettings(); });
    m_menu->addSeparator();
    m_menu->addItem(
        QStringLiteral("Settings…"), [this] { openSettings(); }, Qt::Key_Comma);
    m_menu->addItem(QStringLiteral("Check for Updates…"), [this] { m_actions.check(true); })
        ->setEnabled(m_actions.check != nullptr);
    m_menu->addSeparator();
    m_menu->addItem(
        QStringLiteral("Quit Quillory"), [] { QApplication::quit(); }, Qt::Key_Q);
    QObject::connect(m_menu.get(), &QMenu::aboutToShow, m_menu.get(), [this] { menuNeedsUpdate(); });
    menuNeedsUpdate(); // a tray may read the menu long before opening it
    QApplication::setWindowIcon(programIcon());
    m_statusItem = std::make_unique<StatusItem>(*m_menu, m_desktop.statusBar);
    m_desktop.mainQueue.postAfter(patienceForTray, m_life.whileAlive([this] { tellOfMissingTray(); }));
}

void AppDelegate::tellOfMissingTray() {
    platform::StatusBar &statusBar = m_desktop.statusBar;
    if (statusBar.isAvailable()) {
        return;
    }
    std::fputs("quillory: this desktop has no place for status icons; start quillory again to open its menu\n", stderr);
    platform::UserDefaults &store = m_assembly.settings.store();
    if (!store.boolean(toldOfMissingTray)) {
        store.set(toldOfMissingTray, true);
        statusBar.tell(QStringLiteral("Quillory is running"),
                       QStringLiteral("This desktop has no place for status icons. Start Quillory again to open its "
                                      "menu."));
    }
}

void AppDelegate::menuNeedsUpdate() {
    const platform::UserDefaults &store = m_assembly.settings.store();
    m_enabledItem->setChecked(store.boolean(settingsKey::enabled));
    m_compareItem->setChecked(store.boolean(settingsKey::compareMode));
    m_accessItem->setVisible(!m_desktop.accessibility.isProcessTrusted());
}

void AppDelegate::flip(const QString &key) {
    platform::UserDefaults &store = m_assembly.settings.store();
    store.set(key, !store.boolean(key));
    menuNeedsUpdate(); // Qt has toggled the item's own mark, which may differ from what is stored
}

void AppDelegate::openAccessibilitySettings() {
    m_desktop.accessibility.isProcessTrustedWithPrompt();
    m_desktop.accessibility.showSettings();
}

void AppDelegate::openSettings() {
    if (m_settingsWindow == nullptr) {
        m_settingsWindow = std::make_unique<SettingsWindow>(SettingsServices{
            m_assembly.settings, m_assembly.client, m_desktop.accessibility, m_desktop.mainQueue, m_desktop.workspace});
    }
    m_settingsWindow->makeKeyAndOrderFront();
}

void AppDelegate::applicationDidReopen() {
    if (m_desktop.statusBar.isAvailable()) {
        openSettings();
    } else {
        openMenu();
    }
}

void AppDelegate::openMenu() {
    if (m_menuWindow == nullptr) {
        m_menuWindow = std::make_unique<MenuWindow>(*m_menu);
    }
    m_menuWindow->open();
}

} // namespace quillory::ui
