// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "MonitorStory.h"
#include "Terminal.h"

using namespace Qt::StringLiterals;

namespace quillory {
namespace {

using test::text;
using testing::HasSubstr;
using testing::Not;

struct InspectStory : test::MonitorStory {
    struct Desktop final : CommandDesktop {
        explicit Desktop(InspectStory &toldIn) : story(toldIn) {}
        void pass(std::chrono::milliseconds time) override {
            story.passedTime += time;
            story.meanwhile();
        }
        [[nodiscard]] std::chrono::steady_clock::time_point now() const override {
            return std::chrono::steady_clock::time_point(10 * story.passedTime); // a look takes its time too
        }
        [[nodiscard]] const platform::Platform &services() const override { return story.desktop.services(); }
        InspectStory &story;
    };
    test::Terminal terminal{desktop};
    std::chrono::milliseconds passedTime{0};
    std::function<void()> meanwhile = [] {};

    std::optional<int> inspect(const QStringList &arguments) {
        terminal.services.openDesktop = [this] { return std::make_unique<Desktop>(*this); };
        return terminal.run(QStringList{u"inspect"_s} + arguments);
    }
    QJsonObject inspected() {
        inspect({u"--json"_s});
        return QJsonDocument::fromJson(QByteArray::fromStdString(terminal.output)).object();
    }
    QJsonValue sent(int request) { return desktop.urlSession.exchange(request)->json()[u"messages"_s]; }
};

TEST_F(InspectStory, ShowsTheVeryMessagesThatAreSent) {
    desktop.userDefaults.set(settingsKey::openRouterAPIKey, u"sk-secret"_s);
    desktop.userDefaults.set(settingsKey::businessProfile, u"We sell dates."_s);
    page->addText(u"is it in stock?"_s, {300, 100, 100, 20});
    start();
    desktop.advance(100);
    EXPECT_EQ(inspected()[u"request"_s][u"messages"_s], sent(0));
    type(u"helo can u send it"_s, 1000);
    EXPECT_EQ(inspected()[u"request"_s][u"messages"_s], sent(1));
    EXPECT_EQ(inspect({}), exitStatus::success);
    EXPECT_THAT(terminal.output,
                testing::AllOf(HasSubstr("«customer» is it in stock?"), HasSubstr("set, not shown"),
                               HasSubstr("the host \"web.whatsapp.com\""), Not(HasSubstr("sk-secret"))));
}

TEST_F(InspectStory, WaitsForAMessageBoxAndSaysWhyNothingWouldBeSent) {
    const auto bar = browser->add(platform::axRole::textField);
    bar->setValue(u"a secret search"_s);
    focus(bar);
    EXPECT_EQ(inspect({u"--wait"_s, u"2"_s}), exitStatus::failure);
    EXPECT_GE(10 * passedTime, std::chrono::seconds(2));
    EXPECT_LE(10 * passedTime, std::chrono::seconds(6));
    EXPECT_THAT(terminal.output,
                testing::AllOf(HasSubstr("belongs to the browser itself"), Not(HasSubstr("a secret"))));
    meanwhile = [this] { focus(box); };
    EXPECT_EQ(inspect({u"--wait"_s, u"600"_s}), exitStatus::success);
    EXPECT_THAT(terminal.output, HasSubstr("no conversation"));
    page->addText(text("\x1B[2J\x07gone?"), {300, 100, 100, 20});
    EXPECT_EQ(inspect({}), exitStatus::success);
    EXPECT_THAT(terminal.output, HasSubstr("«customer» ?[2J?gone?"));
    page->set(platform::AXAttribute::url, QUrl(u"https://example.com/"_s));
    inspect({});
    EXPECT_THAT(terminal.output, HasSubstr("not a WhatsApp message box"));
    EXPECT_EQ(inspect({u"--wait"_s, u"-1"_s}), exitStatus::misuse);
}

} // namespace
} // namespace quillory
