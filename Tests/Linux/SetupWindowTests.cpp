// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Linux/XClient.h"
#include "Quillory/Settings/AppSettings.h"
#include "Quillory/UI/Setup/SetupWindow.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <gmock/gmock.h>

#include <condition_variable>

namespace quillory::test {
namespace {

using namespace Qt::StringLiterals;

/// A desktop on which accessibility is off, and a key storage.
struct SetupWindowTest : testing::Test, platform::DesktopDoctor, platform::KeyStorage {
    SimulatedDesktop desktop;
    ModelAccess access{desktop.userDefaults, desktop.process, desktop.urlSession, *this};
    platform::DesktopFacts facts;
    QString stored;
    /// Set: a look lasts until it is asked to stop.
    std::atomic<bool> isLookEndless = false;
    std::atomic<bool> wasStopped = false;

    [[nodiscard]] platform::DesktopFacts examine(const std::stop_token &stop) override {
        std::mutex sleep;
        std::unique_lock lock(sleep);
        std::condition_variable_any never;
        never.wait_for(lock, stop, std::chrono::seconds(isLookEndless ? 10 : 0), [] { return false; });
        wasStopped = stop.stop_requested();
        return facts;
    }
    [[nodiscard]] std::vector<platform::ApplicationFacts>
    examineApplications(const std::stop_token & /*stop*/) override {
        return {};
    }
    bool enableAccessibility(const std::stop_token & /*stop*/) override {
        facts.isAccessibilityEnabled = true;
        return true;
    }
    bool setStartsAtLogin(bool /*starts*/) override { return false; }
    bool start(const std::stop_token & /*stop*/) override { return false; }
    platform::KeyPlace storeKey(const QString &key, const std::stop_token & /*stop*/) override {
        stored = key;
        desktop.userDefaults.set(settingsKey::openRouterAPIKey, key);
        return platform::KeyPlace::settingsFile;
    }
    void SetUp() override {
        facts.hasDisplay = facts.hasSessionBus = facts.hasAccessibilityBus = true;
        facts.isAccessibilityEnabled = false;
        desktop.urlSession.onRequest([](SimulatedExchange &exchange) { exchange.answer({}); });
    }
    /// Work runs on threads of its own and posts its end.
    bool runUntil(const std::function<bool()> &condition) {
        return spinUntil([&] {
            desktop.advance(1);
            return condition();
        });
    }
};

QPushButton *button(const QWidget &window, const QString &label) {
    for (auto *found : window.findChildren<QPushButton *>()) {
        if (found->text().remove(u'&') == label && found->isEnabled()) {
            return found;
        }
    }
    return nullptr;
}

bool says(const QWidget &window, const QString &text) {
    return std::ranges::any_of(window.findChildren<QWidget *>(), [&](const QWidget *part) {
        const auto *label = qobject_cast<const QLabel *>(part);
        return (label != nullptr ? label->text() : part->toolTip() + part->accessibleName()).contains(text);
    });
}

TEST_F(SetupWindowTest, MendsWhatCanBeMendedAndTakesTheKeyWithoutShowingIt) {
    ui::SetupWindow window({*this, access}, desktop.mainQueue);
    window.QWidget::show();
    ASSERT_TRUE(runUntil([&] { return button(window, u"Switch On"_s) != nullptr && window.isActiveWindow(); }));
    QPushButton *const again = button(window, u"Check Again"_s);
    again->setFocus();
    again->click();
    EXPECT_EQ(window.focusWidget(), nullptr) << "the next button would take a second press of the key";
    ASSERT_TRUE(runUntil([&] { return again->isEnabled(); }));
    EXPECT_EQ(window.focusWidget(), again);
    auto *const field = window.findChild<QLineEdit *>();
    button(window, u"Switch On"_s)->click();
    field->setFocus();
    ASSERT_TRUE(runUntil([&] { return says(window, u"Accessibility is on."_s); }));
    EXPECT_EQ(window.focusWidget(), field) << "the user has gone on to the key";
    EXPECT_EQ(field->echoMode(), QLineEdit::Password);
    QApplication::clipboard()->setText(u"sk-or-\r\nv1 \n"_s);
    field->paste();
    ASSERT_TRUE(runUntil([&] { return button(window, u"Save Key"_s) != nullptr; }));
    button(window, u"Save Key"_s)->click();
    ASSERT_TRUE(runUntil([&] { return !stored.isEmpty() && field->text().isEmpty(); }));
    EXPECT_EQ(stored, u"sk-or-v1"_s);
    EXPECT_TRUE(runUntil([&] { return button(window, u"Test"_s) != nullptr; }));
    EXPECT_FALSE(says(window, u"sk-or"_s));
}

TEST_F(SetupWindowTest, SavesWhatWasEnteredWhileItLooked) {
    desktop.urlSession.onRequest([](SimulatedExchange & /*exchange*/) {}); // looking takes its time
    const ui::SetupWindow window({*this, access}, desktop.mainQueue);
    ASSERT_TRUE(runUntil([&] { return desktop.urlSession.requestCount() == 1; }));
    auto *const field = window.findChild<QLineEdit *>();
    for (const QString &typed : {u"sk-or"_s, u"sk-or-v1"_s}) {
        field->setText(typed);
        EXPECT_FALSE(says(window, u"Saving…"_s)) << "what was entered has changed since";
        Q_EMIT field->returnPressed();
        EXPECT_TRUE(says(window, u"Saving…"_s));
    }
    desktop.urlSession.onRequest([](SimulatedExchange &exchange) { exchange.answer({}); });
    desktop.urlSession.exchange(0)->answer({});
    EXPECT_TRUE(runUntil([&] { return stored == u"sk-or-v1"_s && field->text().isEmpty(); }));
}

TEST_F(SetupWindowTest, WaitsForNoWorkWhenItIsClosed) {
    isLookEndless = true;
    desktop.urlSession.onRequest([](SimulatedExchange & /*exchange*/) {}); // the service is just as slow
    { const ui::SetupWindow window({*this, access}, desktop.mainQueue); }
    EXPECT_TRUE(wasStopped);
}

} // namespace
} // namespace quillory::test
