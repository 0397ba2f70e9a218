// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Terminal.h"

namespace quillory::test {
namespace {

using testing::HasSubstr;

struct RewriteCommand : testing::Test {
    SimulatedDesktop desktop;
    Terminal terminal{desktop};

    void SetUp() override {
        desktop.userDefaults.set(settingsKey::openRouterAPIKey, u"key"_s);
        answer({u"<draft>Hel"_s, u"lo.</draft>\n"_s});
    }
    void answer(const QStringList &pieces) {
        desktop.urlSession.onRequest([=](SimulatedExchange &exchange) { exchange.answer(pieces); });
    }
    std::optional<int> run(const QStringList &arguments, const std::string &typed = {}) {
        return terminal.run(QStringList{u"rewrite"_s} + arguments, typed);
    }
    std::string asked() {
        return desktop.urlSession.exchange(desktop.urlSession.requestCount() - 1)->request().body.toStdString();
    }
};

TEST_F(RewriteCommand, TakesTheDraftFromArgumentsOrInput) {
    EXPECT_EQ(run({u"helo"_s, u"there"_s}), exitStatus::success);
    EXPECT_EQ(terminal.output, "Hello.\n");
    EXPECT_THAT(asked(), HasSubstr(R"(<draft>\nhelo there\n</draft>)"));
    EXPECT_EQ(run({u"--tone"_s, u"concise"_s, u"--json"_s}, "--json\nمرحبا"), exitStatus::success);
    EXPECT_THAT(terminal.output, HasSubstr(R"("rewrite": "Hello.")"));
    EXPECT_THAT(asked(), testing::AllOf(HasSubstr("--json\\nمرحبا"), HasSubstr("as clear and concise")));
    terminal.showsGrowingText = true;
    answer({u" <dra"_s, u"ft>Hel"_s, u"lo, 1 < "_s, u"2 <3.</"_s, u"draft>\n"_s});
    EXPECT_EQ(run({u"--"_s, u"--tone"_s}), exitStatus::success);
    EXPECT_EQ(terminal.output, "Hello, 1 < 2 <3.\n") << "as it grows, too, without what belongs to the request";
    EXPECT_THAT(asked(), HasSubstr(R"(<draft>\n--tone\n</draft>)"));
    answer({u"He\x1B[2J"_s, u"l\tl\x9Bo."_s});
    EXPECT_EQ(run({u"helo"_s}), exitStatus::success);
    EXPECT_EQ(terminal.output, "He?[2Jl\tl?o.\n");
}

TEST_F(RewriteCommand, SaysWhatIsWrong) {
    for (const QStringList &arguments : {QStringList{u"--tone"_s, u"loud"_s, u"x"_s}, {u"--tone"_s}}) {
        EXPECT_EQ(run(arguments), exitStatus::misuse);
    }
    EXPECT_EQ(run({}, " \n"), exitStatus::failure);
    EXPECT_EQ(run({}, "\xff"), exitStatus::failure);
    EXPECT_EQ(desktop.urlSession.requestCount(), 0);
    answer({QString(400, u'x')});
    EXPECT_EQ(run({QString(50, u'd')}), exitStatus::failure);
    EXPECT_THAT(terminal.errors, HasSubstr("The model went off script: 400 chars for a 50-char draft"));
    EXPECT_EQ(terminal.output, "");
    terminal.showsGrowingText = true;
    EXPECT_EQ(run({QString(50, u'd')}), exitStatus::failure);
    EXPECT_TRUE(terminal.output.ends_with("x\n")) << "the error starts a line";
    desktop.userDefaults.remove(settingsKey::openRouterAPIKey);
    EXPECT_EQ(run({u"helo"_s}), exitStatus::failure);
    EXPECT_THAT(terminal.errors, HasSubstr("quillory: No OpenRouter API key set."));
}

} // namespace
} // namespace quillory::test
