// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Linux/XClient.h"
#include "Quillory/Settings/AppSettings.h"
#include "Quillory/UI/Settings/SettingsWindow.h"
#include "Quillory/UI/Shell/AppDelegate.h"
#include "Quillory/UI/Shell/MenuWindow.h"
#include "Quillory/UI/Shell/StatusMenu.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>

#include <gmock/gmock.h>

namespace quillory::test {
namespace {

using namespace quillory::ui;
using namespace Qt::StringLiterals;

/// The program's shell on a simulated desktop, with real windows.
class AppDelegateTest : public testing::Test {
  protected:
    void launch() {
        delegate.emplace(
            desktop.services(),
            AppActions{
                .startPeriodicChecks = [this] { updates += u"periodic after "_s + desktop.log().constLast() + u'\n'; },
                .check = [this](bool userInitiated) { updates += userInitiated ? u"by the user\n"_s : u"?\n"_s; },
                .launchSetup = [this] { ++setups; }});
        delegate->applicationDidFinishLaunching();
    }
    template <typename Window> static std::vector<Window *> windows() {
        std::vector<Window *> found;
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *window = dynamic_cast<Window *>(widget); window != nullptr) {
                found.push_back(window);
            }
        }
        return found;
    }
    template <typename Window> static bool isShown() {
        return std::ranges::any_of(windows<Window>(), &QWidget::isVisible);
    }
    static StatusMenu &menu() { return *windows<StatusMenu>().at(0); }
    static QAction &item(const QString &title) {
        for (QAction *action : menu().actions()) {
            if (action->text() == title) {
                return *action;
            }
        }
        throw std::out_of_range(title.toStdString());
    }
    bool isOn(const QString &key) { return desktop.userDefaults.boolean(key); }

    SimulatedDesktop desktop;
    QString updates;
    std::optional<AppDelegate> delegate;
    int setups = 0;
};

TEST_F(AppDelegateTest, StartsInItsOrder) {
    desktop.applications.trusted = false;
    launch();
    EXPECT_EQ(desktop.log().value(0), u"launched, accessibility trusted = false"_s);
    EXPECT_EQ(desktop.applications.prompts, 1);
    EXPECT_EQ(updates, u"periodic after launched, accessibility trusted = false\n"_s);
    EXPECT_TRUE(isShown<SettingsWindow>()) << "there is no API key";
    desktop.applications.trusted = true;
    delegate.reset();
    EXPECT_TRUE(windows<SettingsWindow>().empty());

    desktop.userDefaults.set(settingsKey::openRouterAPIKey, u"key"_s);
    launch();
    EXPECT_FALSE(isShown<SettingsWindow>());
    EXPECT_EQ(desktop.applications.prompts, 1);
    EXPECT_EQ(desktop.log().constLast(), u"launched, accessibility trusted = true"_s);
}

TEST_F(AppDelegateTest, LaunchesTheSetUpWhereSomethingIsMissing) {
    // A session's bus may be late, and access that is lost later is no reason.
    for (const auto &[key, isTrustedAtFirst, isTrustedThen, isExpected] : {std::tuple(u""_s, true, true, 1),
                                                                           {u"key"_s, false, false, 1},
                                                                           {u"key"_s, false, true, 0},
                                                                           {u"key"_s, true, false, 0}}) {
        desktop.userDefaults.set(settingsKey::openRouterAPIKey, key);
        desktop.applications.trusted = isTrustedAtFirst;
        setups = 0;
        launch();
        desktop.applications.trusted = isTrustedThen;
        desktop.advance(5000);
        EXPECT_EQ(setups, isExpected) << isTrustedAtFirst << isTrustedThen;
    }
}

TEST_F(AppDelegateTest, DoesWhatItsMenuSays) {
    desktop.userDefaults.set(settingsKey::openRouterAPIKey, u"key"_s);
    launch();
    for (const auto &[title, key, first] : {std::tuple(u"Suggestions Enabled"_s, settingsKey::enabled, true),
                                            {u"Compare Two Models"_s, settingsKey::compareMode, false}}) {
        item(title).trigger();
        EXPECT_EQ(isOn(key), !first);
        EXPECT_EQ(item(title).isChecked(), !first);
        desktop.userDefaults.set(key, first); // by another process; the menu's own mark is older
        item(title).trigger();
        EXPECT_EQ(isOn(key), !first);
    }
    item(u"Grant Accessibility Access…"_s).trigger();
    EXPECT_EQ(desktop.applications.prompts, 1);
    EXPECT_EQ(desktop.applications.settingsShown, 1);
    updates.clear();
    item(u"Check for Updates…"_s).trigger();
    EXPECT_EQ(updates, u"by the user\n"_s);

    QKeyEvent comma(QEvent::KeyPress, Qt::Key_Comma, Qt::ControlModifier, u","_s);
    QApplication::sendEvent(&menu(), &comma);
    ASSERT_TRUE(isShown<SettingsWindow>());
    EXPECT_EQ(desktop.applications.activated, std::vector{static_cast<qint32>(QApplication::applicationPid())});
    SettingsWindow *const window = windows<SettingsWindow>().at(0);
    window->close();
    item(u"Settings…"_s).trigger();
    EXPECT_EQ(windows<SettingsWindow>(), std::vector{window});
    EXPECT_TRUE(window->isVisible());
}

TEST_F(AppDelegateTest, OpensItsMenuAsAWindowWhereThereIsNoTray) {
    desktop.userDefaults.set(settingsKey::openRouterAPIKey, u"key"_s);
    launch();
    desktop.advance(60'000);
    EXPECT_EQ(desktop.statusBar.told.size(), 1);
    delegate->applicationDidReopen();
    ASSERT_TRUE(isShown<MenuWindow>());
    EXPECT_FALSE(isShown<SettingsWindow>());
    const auto rows = windows<MenuWindow>().at(0)->findChildren<QAbstractButton *>();
    const auto titles = [&rows] {
        QStringList shown;
        for (const QAbstractButton *row : rows) {
            shown += row->isVisible() ? QStringList(row->text()) : QStringList();
        }
        return shown.join(u" | "_s);
    };
    EXPECT_EQ(titles(), u"Suggestions Enabled | Compare Two Models | Settings… | Check for Updates… | Quit Quillory"_s);
    desktop.applications.trusted = false;
    EXPECT_TRUE(spinUntil([&] { return titles().contains(u" | Grant Accessibility Access… | "_s); }));
    desktop.applications.trusted = true;
    EXPECT_TRUE(spinUntil([&] { return !titles().contains(u"Grant"_s); }));
    desktop.userDefaults.set(settingsKey::compareMode, true); // by another process
    rows.at(1)->click();
    EXPECT_FALSE(isOn(settingsKey::compareMode));
    EXPECT_FALSE(rows.at(1)->isChecked());
    desktop.userDefaults.set(settingsKey::compareMode, true);
    EXPECT_TRUE(spinUntil([&] { return rows.at(1)->isChecked(); }));
    rows.at(3)->click();
    EXPECT_TRUE(isShown<SettingsWindow>());

    windows<SettingsWindow>().at(0)->close();
    windows<MenuWindow>().at(0)->close();
    desktop.statusBar.setAvailable(true); // a panel that starts late
    delegate->applicationDidReopen();
    EXPECT_TRUE(isShown<SettingsWindow>());
    EXPECT_FALSE(isShown<MenuWindow>());

    desktop.statusBar.setAvailable(false);
    launch();
    desktop.advance(60'000);
    EXPECT_EQ(desktop.statusBar.told.size(), 1) << "once and for all";
}

} // namespace
} // namespace quillory::test
