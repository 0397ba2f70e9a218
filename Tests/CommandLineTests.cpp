// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/CommandLine.h"
#include "Quillory/Settings/AppSettings.h"
#include "SimulatedDesktop/SimulatedUserDefaults.h"

#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <sstream>

namespace quillory::test {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {
struct Outcome {
    std::optional<int> status;
    std::string output;
    std::string errors;
};

struct KeyTaker final : platform::KeyStorage {
    QString kept;
    platform::KeyPlace place = platform::KeyPlace::passwordStore;
    platform::KeyPlace storeKey(const QString &key, const std::stop_token & /*stop*/) override {
        kept = key;
        return place;
    }
};

class CommandLineTest : public testing::Test {
  protected:
    Outcome run(const QStringList &arguments, const std::string &typed = {}) {
        std::istringstream input(typed);
        std::ostringstream output;
        std::ostringstream errors;
        CommandServices services;
        services.openSettings = [this] { return CommandSettings{store, keys}; };
        services.homeDirectory = home.path();
        const std::optional<int> status = runCommandLine(arguments, services, {input, output, errors});
        return {status, output.str(), errors.str()};
    }
    Outcome defaults(const QStringList &arguments, const std::string &typed = {}) {
        return run(QStringList{u"defaults"_qs} + arguments, typed);
    }

    SimulatedUserDefaults store;
    KeyTaker keys;
    QTemporaryDir home;
};

const QString faq = u"[{\"id\":\"9C1E7F2A-0B3D-4E5F-8A6B-7C8D9E0F1A2B\",\"question\":\"Q\",\"answer\":\"A\"}]"_qs;
} // namespace

TEST_F(CommandLineTest, TellsCommandsFromStarting) {
    EXPECT_EQ(run({}).status, std::nullopt);
    EXPECT_EQ(run({u"-session"_qs, u"1042"_qs}).status, std::nullopt);
    EXPECT_EQ(run({u"--version"_qs}).output, "quillory " QUILLORY_VERSION "\n");
    EXPECT_THAT(run({u"--help"_qs}).output, AllOf(HasSubstr("defaults write"), HasSubstr("debugAcceptOnce")));
    for (const QString &nonsense : {u"--frobnicate"_qs, u"--help=x"_qs, u"default"_qs, QString()}) {
        const Outcome outcome = run({nonsense});
        EXPECT_EQ(outcome.status, exitStatus::misuse);
        EXPECT_THAT(outcome.errors, HasSubstr("--help"));
    }
    const Outcome help = run({u"inspect"_qs, u"--help"_qs});
    EXPECT_EQ(help.status, exitStatus::success);
    EXPECT_THAT(help.output, AllOf(StartsWith("quillory inspect [--json] [--wait SECONDS]\n"), HasSubstr("--wait <"),
                                   Not(HasSubstr("executable"))));
}

TEST_F(CommandLineTest, WritesValuesOfTheirTypes) {
    const std::tuple<QString, QString, platform::DefaultsValue> cases[]{
        {u"model"_qs, u"some/model"_qs, u"some/model"_qs},
        {u"businessProfile"_qs, QString(), QString()},
        {u"compareMode"_qs, u"YES"_qs, true},
        {u"enabled"_qs, u"false"_qs, false},
        {u"assistantMode"_qs, u"0"_qs, false},
        {u"debounceMs"_qs, u"750"_qs, qint64{750}},
        {u"faqKnowledge"_qs, u"--json - is - a format"_qs, u"--json - is - a format"_qs},
        {u"faqEntries"_qs, faq,
         faqEntriesToJSON({FAQEntry{QUuid(u"9c1e7f2a-0b3d-4e5f-8a6b-7c8d9e0f1a2b"), u"Q"_qs, u"A"_qs}})},
    };
    for (const auto &[key, text, value] : cases) {
        EXPECT_EQ(defaults({u"write"_qs, key, text}).status, exitStatus::success) << key.toStdString();
        EXPECT_EQ(store.stored()[key], value) << key.toStdString();
    }
    EXPECT_EQ(defaults({u"delete"_qs, u"model"_qs}).status, exitStatus::success);
    EXPECT_EQ(store.stored().count(u"model"_qs), 0U);
    EXPECT_EQ(defaults({u"read"_qs, u"model"_qs}).output, "anthropic/claude-haiku-4.5\n");
    EXPECT_EQ(defaults({u"read"_qs, u"debounceMs"_qs}).output, "750\n");
    EXPECT_EQ(defaults({u"read"_qs, u"businessProfile"_qs}).status, exitStatus::success);
    EXPECT_EQ(defaults({u"read"_qs, u"openRouterAPIKey"_qs}).status, exitStatus::failure);
    store.diskIsFull = true;
    EXPECT_EQ(defaults({u"write"_qs, u"tone"_qs, u"Concise"_qs}).status, exitStatus::failure);
}

TEST_F(CommandLineTest, RefusesWhatDoesNotFit) {
    const QStringList cases[]{
        {},
        {u"read"_qs, u"tone"_qs, u"more"_qs},
        {u"read"_qs, u"Tone"_qs},
        {u"write"_qs, u"tone"_qs},
        {u"write"_qs, u"unknown"_qs, u"1"_qs},
        {u"write"_qs, u"enabled"_qs, u"2"_qs},
        {u"write"_qs, u"enabled"_qs, QString()},
        {u"write"_qs, u"minChars"_qs, u"8.5"_qs},
        {u"write"_qs, u"minChars"_qs, u"99999999999999999999"_qs},
        {u"write"_qs, u"faqEntries"_qs, u"[{}]"_qs},
        {u"write"_qs, u"openRouterAPIKey"_qs, u"sk-visible"_qs},
        {u"write"_qs, u"openRouterAPIKey"_qs, u"-"_qs},
        {u"delete"_qs},
        {u"delete"_qs, u"unknown"_qs},
        {u"--json"_qs, u"read"_qs},
    };
    for (const QStringList &arguments : cases) {
        const Outcome outcome = defaults(arguments);
        EXPECT_EQ(outcome.status, exitStatus::misuse) << arguments.join(u' ').toStdString();
        EXPECT_THAT(outcome.errors, AllOf(EndsWith(".\n"), Not(HasSubstr("sk-visible"))));
        EXPECT_EQ(outcome.output, "");
    }
    EXPECT_EQ(defaults({u"write"_qs, u"businessProfile"_qs, u"-"_qs}, "a\xff").status, exitStatus::misuse);
    EXPECT_EQ(defaults({u"write"_qs, u"faqKnowledge"_qs, u"-"_qs}, std::string(2 << 20, 'x')).status,
              exitStatus::misuse);
    for (const char *typed : {"", " \n", "sk visible\n", "sk-visible\xff\n"}) {
        const Outcome outcome = defaults({u"write"_qs, u"openRouterAPIKey"_qs, u"-"_qs}, typed);
        EXPECT_EQ(outcome.status, exitStatus::misuse);
        EXPECT_THAT(outcome.errors, AllOf(EndsWith(".\n"), Not(HasSubstr("visible"))));
    }
    EXPECT_TRUE(store.stored().empty());
    EXPECT_EQ(keys.kept, QString());
    keys.place = platform::KeyPlace::nowhere;
    EXPECT_EQ(defaults({u"write"_qs, u"openRouterAPIKey"_qs, u"-"_qs}, "sk-1").status, exitStatus::failure);
}

TEST_F(CommandLineTest, TheKeyComesFromInputAndIsNeverShown) {
    EXPECT_THAT(defaults({u"read"_qs}).output, HasSubstr("openRouterAPIKey: (not set)\n"));
    const Outcome saved = defaults({u"write"_qs, u"openRouterAPIKey"_qs, u"-"_qs}, " sk-secret \r\nlogin: me\n");
    EXPECT_EQ(saved.status, exitStatus::success);
    EXPECT_THAT(saved.output, HasSubstr("password store"));
    EXPECT_EQ(keys.kept, u"sk-secret"_qs);
    EXPECT_TRUE(store.stored().empty()) << "who keeps the key decides where";
    store.set(settingsKey::openRouterAPIKey, keys.kept);
    EXPECT_EQ(defaults({u"read"_qs, u"openRouterAPIKey"_qs}).output, "(set)\n");

    EXPECT_EQ(defaults({u"write"_qs, u"businessProfile"_qs, u"-"_qs}, "We\nsell\n\n").status, exitStatus::success);
    EXPECT_EQ(store.string(settingsKey::businessProfile), u"We\nsell\n"_qs);
    const std::string all = defaults({u"read"_qs}).output;
    EXPECT_THAT(all, AllOf(HasSubstr("openRouterAPIKey: (set)\n"), HasSubstr("tone: Professional\n"),
                           HasSubstr("businessProfile: We\\nsell\\n\n"), Not(HasSubstr("sk-secret"))));
    EXPECT_EQ(std::ranges::count(all, '\n'), 14);
}

} // namespace quillory::test
