// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Settings/AppSettings.h"
#include "Terminal.h"

namespace quillory::test {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {
struct CommandLineTest : testing::Test {
    SimulatedDesktop desktop;
    Terminal terminal{desktop};
    SimulatedUserDefaults &store = desktop.userDefaults;

    std::optional<int> defaults(const QStringList &arguments, const std::string &typed = {}) {
        return terminal.run(QStringList{u"defaults"_s} + arguments, typed);
    }
};

const QString faq = u"[{\"id\":\"9C1E7F2A-0B3D-4E5F-8A6B-7C8D9E0F1A2B\",\"question\":\"Q\",\"answer\":\"A\"}]"_s;
} // namespace

TEST_F(CommandLineTest, TellsCommandsFromStarting) {
    EXPECT_EQ(terminal.run({}), std::nullopt);
    EXPECT_EQ(terminal.run({u"-session"_s, u"1042"_s}), std::nullopt);
    terminal.run({u"--version"_s});
    EXPECT_EQ(terminal.output, "quillory " QUILLORY_VERSION "\n");
    terminal.run({u"--help"_s});
    EXPECT_THAT(terminal.output, AllOf(HasSubstr("defaults write"), HasSubstr("debugAcceptOnce")));
    for (const QString &nonsense : {u"--frobnicate"_s, u"--help=x"_s, u"default"_s, QString()}) {
        EXPECT_EQ(terminal.run({nonsense}), exitStatus::misuse);
        EXPECT_THAT(terminal.errors, HasSubstr("--help"));
    }
    EXPECT_EQ(terminal.run({u"inspect"_s, u"--help"_s}), exitStatus::success);
    EXPECT_THAT(terminal.output, AllOf(StartsWith("quillory inspect [--json] [--wait SECONDS]\n"),
                                       HasSubstr("--wait <"), Not(HasSubstr("executable"))));
    EXPECT_EQ(terminal.run({u"stats"_s, u"--csv"_s}), exitStatus::misuse);
}

TEST_F(CommandLineTest, WritesValuesOfTheirTypes) {
    const std::tuple<QString, QString, platform::DefaultsValue> cases[]{
        {u"businessProfile"_s, QString(), QString()},
        {u"compareMode"_s, u"YES"_s, true},
        {u"enabled"_s, u"0"_s, false},
        {u"debounceMs"_s, u"750"_s, qint64{750}},
        {u"faqKnowledge"_s, u"--json - is - a format"_s, u"--json - is - a format"_s},
        {u"faqEntries"_s, faq,
         faqEntriesToJSON({FAQEntry{QUuid(u"9c1e7f2a-0b3d-4e5f-8a6b-7c8d9e0f1a2b"), u"Q"_s, u"A"_s}})},
    };
    for (const auto &[key, text, value] : cases) {
        EXPECT_EQ(defaults({u"write"_s, key, text}), exitStatus::success) << key.toStdString();
        EXPECT_EQ(store.stored()[key], value) << key.toStdString();
    }
    EXPECT_EQ(defaults({u"delete"_s, u"debounceMs"_s}), exitStatus::success);
    EXPECT_EQ(store.stored().count(u"debounceMs"_s), 0U);
    EXPECT_EQ(defaults({u"read"_s, u"debounceMs"_s}), exitStatus::success);
    EXPECT_EQ(terminal.output, "500\n");
    store.diskIsFull = true;
    EXPECT_EQ(defaults({u"write"_s, u"tone"_s, u"Concise"_s}), exitStatus::failure);
}

TEST_F(CommandLineTest, RefusesWhatDoesNotFit) {
    const QStringList cases[]{
        {},
        {u"read"_s, u"Tone"_s},
        {u"write"_s, u"tone"_s},
        {u"write"_s, u"enabled"_s, u"2"_s},
        {u"write"_s, u"minChars"_s, u"99999999999999999999"_s},
        {u"write"_s, u"faqEntries"_s, u"[{}]"_s},
        {u"write"_s, u"openRouterAPIKey"_s, u"sk-visible"_s},
        {u"write"_s, u"openRouterAPIKey"_s, u"-"_s},
        {u"--json"_s, u"read"_s},
    };
    for (const QStringList &arguments : cases) {
        EXPECT_EQ(defaults(arguments), exitStatus::misuse) << arguments.join(u' ').toStdString();
        EXPECT_THAT(terminal.errors, AllOf(EndsWith(".\n"), Not(HasSubstr("sk-visible"))));
        EXPECT_EQ(terminal.output, "");
    }
    EXPECT_EQ(defaults({u"write"_s, u"faqKnowledge"_s, u"-"_s}, std::string(2 << 20, 'x')), exitStatus::misuse);
    for (const char *typed : {"sk visible\n", "sk-visible\xff\n"}) {
        EXPECT_EQ(defaults({u"write"_s, u"openRouterAPIKey"_s, u"-"_s}, typed), exitStatus::misuse);
        EXPECT_THAT(terminal.errors, AllOf(EndsWith(".\n"), Not(HasSubstr("visible"))));
    }
    EXPECT_TRUE(store.stored().empty());
    store.diskIsFull = true;
    EXPECT_EQ(defaults({u"write"_s, u"openRouterAPIKey"_s, u"-"_s}, "sk-1"), exitStatus::failure);
}

TEST_F(CommandLineTest, TheKeyComesFromInputAndIsNeverShown) {
    EXPECT_EQ(defaults({u"read"_s, u"openRouterAPIKey"_s}), exitStatus::failure);
    const QStringList write{u"write"_s, u"openRouterAPIKey"_s, u"-"_s};
    EXPECT_EQ(defaults(write, " sk-secret \r\nlogin: me\n"), exitStatus::success);
    EXPECT_EQ(store.string(settingsKey::openRouterAPIKey), u"sk-secret"_s);
    EXPECT_EQ(defaults({u"write"_s, u"businessProfile"_s, u"-"_s}, "We\nsell\n\n"), exitStatus::success);
    EXPECT_EQ(store.string(settingsKey::businessProfile), u"We\nsell\n"_s);
    EXPECT_EQ(defaults({u"read"_s}), exitStatus::success);
    EXPECT_THAT(terminal.output, AllOf(HasSubstr("openRouterAPIKey: (set)\n"), HasSubstr("tone: Professional\n"),
                                       HasSubstr("faqKnowledge: (not set)\n"),
                                       HasSubstr("businessProfile: We\\nsell\\n\n"), Not(HasSubstr("sk-secret"))));
}

} // namespace quillory::test
