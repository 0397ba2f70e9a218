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
    /// The menu as it opens: check mark, title and key of what is to be seen.
    static QString opened() {
        Q_EMIT menu().aboutToShow();
        QStringList lines;
        for (const QAction *item : menu().actions()) {
            const QString mark = item->isChecked() ? u"✓ "_s : u""_s;
            if (item->isVisible()) {
                lines +=
                    item->isSeparator() ? u"-"_s : (mark + item->text() + u' ' + item->shortcut().toString()).trimmed();
            }
        }
        return lines.join(u" | "_s);
    }
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
    EXPECT_EQ(opened(), u"✓ Suggestions Enabled | Compare Two Models | Grant Accessibility Access… | - | "
                        u"Settings… Ctrl+, | Check for Updates… | - | Quit Quillory Ctrl+Q"_s);
    desktop.applications.trusted = true;
    desktop.userDefaults.set(settingsKey::enabled, false);
    desktop.userDefaults.set(settingsKey::compareMode, true);
    EXPECT_EQ(
        opened(),
        u"Suggestions Enabled | ✓ Compare Two Models | - | Settings… Ctrl+, | Check for Updates… | - | Quit Quillory Ctrl+Q"_s);
    delegate.reset();
    EXPECT_TRUE(windows<SettingsWindow>().empty());

    desktop.userDefaults.set(settingsKey::openRouterAPIKey, u"key"_s);
    launch();
    EXPECT_FALSE(isShown<SettingsWindow>());
    EXPECT_EQ(desktop.applications.prompts, 1);
    EXPECT_EQ(desktop.log().constLast(), u"launched, accessibility trusted = true"_s);
}

TEST_F(AppDelegateTest, LaunchesTheSetUpWhereSomethingIsMissing) {
    for (const auto &[hasKey, isTrusted, isExpected] :
         {std::tuple(false, true, 1), {true, false, 1}, {true, true, 0}}) {
        desktop.userDefaults.set(settingsKey::openRouterAPIKey, hasKey ? u"key"_s : u""_s);
        desktop.applications.trusted = isTrusted;
        setups = 0;
        launch();
        desktop.advance(5000);
        EXPECT_EQ(setups, isExpected) << hasKey << isTrusted;
    }
    for (const bool isTrustedAtFirst : {false, true}) { // a session's bus may be late, and what goes later is no start
        desktop.applications.trusted = isTrustedAtFirst;
        launch();
        desktop.applications.trusted = !isTrustedAtFirst;
        desktop.advance(5000);
        EXPECT_EQ(setups, 0);
    }
}

TEST_F(AppDelegateTest, DoesWhatItsMenuSays) {
    desktop.userDefaults.set(settingsKey::openRouterAPIKey, u"key"_s);
    launch();
    for (const auto &[title, key, first] : {std::tuple(u"Suggestions Enabled"_s, settingsKey::enabled, true),
                                            {u"Compare Two Models"_s, settingsKey::compareMode, false}}) {
        item(title).trigger();
        EXPECT_EQ(isOn(key), !first);
        EXPECT_EQ(opened().contains(u"✓ "_s + title), !first);
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
    EXPECT_EQ(window->size(), QSize(560, 430));
    EXPECT_EQ(window->windowTitle(), u"Quillory"_s);
    window->close();
    item(u"Settings…"_s).trigger();
    EXPECT_EQ(windows<SettingsWindow>(), std::vector{window});
    EXPECT_TRUE(window->isVisible());

    QTimer::singleShot(0, [] {
        QKeyEvent quit(QEvent::KeyPress, Qt::Key_Q, Qt::ControlModifier, u"\x11"_s);
        QApplication::sendEvent(&menu(), &quit);
    });
    EXPECT_EQ(QApplication::exec(), 0);
}

TEST_F(AppDelegateTest, OpensItsMenuAsAWindowWhereThereIsNoTray) {
    desktop.userDefaults.set(settingsKey::openRouterAPIKey, u"key"_s);
    launch();
    testing::internal::CaptureStderr();
    desktop.advance(60'000);
    EXPECT_EQ(QString::fromStdString(testing::internal::GetCapturedStderr()).count(u"no place for status icons"_s), 1);
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
    rows.at(0)->click();
    EXPECT_FALSE(isOn(settingsKey::enabled));
    EXPECT_FALSE(rows.at(0)->isChecked());
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
