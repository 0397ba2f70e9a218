// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "MonitorStory.h"
#include "Quillory/InspectCommand.h"
#include "Quillory/RequestPlan.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <sstream>

namespace quillory {

namespace {

using test::text;
using testing::HasSubstr;
using testing::Not;

struct InspectStory : test::MonitorStory {
    struct Desktop final : CommandDesktop {
        explicit Desktop(InspectStory &toldIn) : story(toldIn) {}
        void pass(std::chrono::milliseconds time) override { story.passed(time); }
        [[nodiscard]] std::chrono::steady_clock::time_point now() const override {
            return std::chrono::steady_clock::time_point(10 * story.passedTime); // a look takes its time too
        }
        InspectStory &story;
    };
    std::ostringstream output;
    std::chrono::milliseconds passedTime{0};
    std::function<void()> meanwhile = [] {};

    void passed(std::chrono::milliseconds time) {
        passedTime += time;
        meanwhile();
    }
    int inspect(const QStringList &arguments) {
        std::istringstream input;
        std::ostringstream errors;
        CommandServices services;
        services.openDesktop = [this] { return std::make_unique<Desktop>(*this); };
        output.str({});
        return runInspectCommand(arguments, services, {input, output, errors});
    }
    QJsonObject inspected() {
        inspect({text("--json")});
        return QJsonDocument::fromJson(QByteArray::fromStdString(output.str())).object();
    }
    QJsonValue sent(int request) { return desktop.urlSession.exchange(request)->json()[text("messages")]; }
};

TEST_F(InspectStory, ShowsTheVeryMessagesThatAreSent) {
    desktop.userDefaults.set(settingsKey::openRouterAPIKey, text("sk-secret"));
    desktop.userDefaults.set(settingsKey::businessProfile, text("We sell dates."));
    page->addText(text("is it in stock?"), {300, 100, 100, 20});
    start();
    desktop.advance(100);
    EXPECT_EQ(inspected()[text("request")][text("messages")], sent(0));
    type(text("helo can u send it"), 1000);
    EXPECT_EQ(inspected()[text("request")][text("messages")], sent(1));
    EXPECT_EQ(inspect({}), exitStatus::success);
    EXPECT_THAT(output.str(), testing::AllOf(HasSubstr("«customer» is it in stock?"), HasSubstr("set, not shown"),
                                             HasSubstr("the host \"web.whatsapp.com\""), Not(HasSubstr("sk-secret"))));
}

TEST_F(InspectStory, WaitsForAMessageBoxAndSaysWhyNothingWouldBeSent) {
    const auto bar = browser->add(platform::axRole::textField);
    bar->setValue(text("a secret search"));
    focus(bar);
    EXPECT_EQ(inspect({text("--wait"), text("2")}), exitStatus::failure);
    EXPECT_GE(10 * passedTime, std::chrono::seconds(2));
    EXPECT_LE(10 * passedTime, std::chrono::seconds(6));
    EXPECT_THAT(output.str(), testing::AllOf(HasSubstr("belongs to the browser itself"), Not(HasSubstr("a secret"))));
    meanwhile = [this] { focus(box); };
    EXPECT_EQ(inspect({text("--wait"), text("600")}), exitStatus::success);
    page->addText(text("\x1B[2J\x07gone?"), {300, 100, 100, 20});
    EXPECT_EQ(inspect({}), exitStatus::success);
    EXPECT_THAT(output.str(), HasSubstr("«customer» ?[2J?gone?"));
    for (const QStringList &wrong : {QStringList{text("--wait")}, {text("--wait"), text("-1")}, {text("now")}}) {
        EXPECT_EQ(inspect(wrong), exitStatus::misuse);
    }
}

TEST(RequestPlan, FollowsTheGates) {
    const FieldSituation base{.enabled = true,
                              .assistantMode = true,
                              .isTextElement = true,
                              .isBrowserUI = false,
                              .isChat = true,
                              .length = 9,
                              .value = text("helo there"),
                              .placeholder = text("Type a message"),
                              .conversation = text("hi"),
                              .minChars = 8,
                              .maxChars = 20};
    const auto whyNot = [&](const std::function<void(FieldSituation &)> &change) {
        FieldSituation field = base;
        change(field);
        return planRequest(field).whyNot.toStdString();
    };
    EXPECT_EQ(planRequest(base).kind, SuggestionKind::rewrite);
    EXPECT_EQ(planRequest(base).context, text("hi"));
    EXPECT_EQ(whyNot([](auto &field) { field.conversation.reset(); }), "");
    EXPECT_THAT(whyNot([](auto &field) { field.enabled = false; }), HasSubstr("\"enabled\""));
    EXPECT_THAT(whyNot([](auto &field) { field.isChat = false; }), HasSubstr("no WhatsApp"));
    EXPECT_THAT(whyNot([](auto &field) { field.length = 21; }), HasSubstr("\"maxChars\""));
    EXPECT_THAT(whyNot([](auto &field) { field.value = QString(21, u'x'); }), HasSubstr("\"maxChars\""));
    EXPECT_THAT(whyNot([](auto &field) { field.value = text("  short \n"); }), HasSubstr("\"minChars\""));
    EXPECT_EQ(whyNot([](auto &field) { field.value = text("Type a message\n"); }), "");
    const auto empty = [&](auto change) {
        return whyNot([&](auto &field) {
            field.value = QString();
            change(field);
        });
    };
    EXPECT_THAT(empty([](auto &field) { field.assistantMode = false; }), HasSubstr("\"assistantMode\""));
    EXPECT_THAT(empty([](auto &field) { field.conversation.reset(); }), HasSubstr("no conversation"));
}

} // namespace

} // namespace quillory
