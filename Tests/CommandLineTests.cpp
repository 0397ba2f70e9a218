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

using namespace Qt::StringLiterals;

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

struct CommandLineTest : testing::Test {
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
        return run(QStringList{u"defaults"_s} + arguments, typed);
    }

    SimulatedUserDefaults store;
    KeyTaker keys;
    QTemporaryDir home;
};

const QString faq = u"[{\"id\":\"9C1E7F2A-0B3D-4E5F-8A6B-7C8D9E0F1A2B\",\"question\":\"Q\",\"answer\":\"A\"}]"_s;
} // namespace

TEST_F(CommandLineTest, TellsCommandsFromStarting) {
    EXPECT_EQ(run({}).status, std::nullopt);
    EXPECT_EQ(run({u"-session"_s, u"1042"_s}).status, std::nullopt);
    EXPECT_EQ(run({u"--version"_s}).output, "quillory " QUILLORY_VERSION "\n");
    EXPECT_THAT(run({u"--help"_s}).output, AllOf(HasSubstr("defaults write"), HasSubstr("debugAcceptOnce")));
    for (const QString &nonsense : {u"--frobnicate"_s, u"--help=x"_s, u"default"_s, QString()}) {
        const Outcome outcome = run({nonsense});
        EXPECT_EQ(outcome.status, exitStatus::misuse);
        EXPECT_THAT(outcome.errors, HasSubstr("--help"));
    }
    const Outcome help = run({u"inspect"_s, u"--help"_s});
    EXPECT_EQ(help.status, exitStatus::success);
    EXPECT_THAT(help.output, AllOf(StartsWith("quillory inspect [--json] [--wait SECONDS]\n"), HasSubstr("--wait <"),
                                   Not(HasSubstr("executable"))));
}

TEST_F(CommandLineTest, WritesValuesOfTheirTypes) {
    const std::tuple<QString, QString, platform::DefaultsValue> cases[]{
        {u"model"_s, u"some/model"_s, u"some/model"_s},
        {u"businessProfile"_s, QString(), QString()},
        {u"compareMode"_s, u"YES"_s, true},
        {u"enabled"_s, u"false"_s, false},
        {u"debounceMs"_s, u"750"_s, qint64{750}},
        {u"faqKnowledge"_s, u"--json - is - a format"_s, u"--json - is - a format"_s},
        {u"faqEntries"_s, faq,
         faqEntriesToJSON({FAQEntry{QUuid(u"9c1e7f2a-0b3d-4e5f-8a6b-7c8d9e0f1a2b"), u"Q"_s, u"A"_s}})},
    };
    for (const auto &[key, text, value] : cases) {
        EXPECT_EQ(defaults({u"write"_s, key, text}).status, exitStatus::success) << key.toStdString();
        EXPECT_EQ(store.stored()[key], value) << key.toStdString();
    }
    EXPECT_EQ(defaults({u"delete"_s, u"model"_s}).status, exitStatus::success);
    EXPECT_EQ(store.stored().count(u"model"_s), 0U);
    EXPECT_EQ(defaults({u"read"_s, u"model"_s}).output, "anthropic/claude-haiku-4.5\n");
    EXPECT_EQ(defaults({u"read"_s, u"debounceMs"_s}).output, "750\n");
    EXPECT_EQ(defaults({u"read"_s, u"businessProfile"_s}).status, exitStatus::success);
    EXPECT_EQ(defaults({u"read"_s, u"openRouterAPIKey"_s}).status, exitStatus::failure);
    store.diskIsFull = true;
    EXPECT_EQ(defaults({u"write"_s, u"tone"_s, u"Concise"_s}).status, exitStatus::failure);
}

TEST_F(CommandLineTest, RefusesWhatDoesNotFit) {
    const QStringList cases[]{
        {},
        {u"read"_s, u"tone"_s, u"more"_s},
        {u"read"_s, u"Tone"_s},
        {u"write"_s, u"tone"_s},
        {u"write"_s, u"unknown"_s, u"1"_s},
        {u"write"_s, u"enabled"_s, u"2"_s},
        {u"write"_s, u"minChars"_s, u"99999999999999999999"_s},
        {u"write"_s, u"faqEntries"_s, u"[{}]"_s},
        {u"write"_s, u"openRouterAPIKey"_s, u"sk-visible"_s},
        {u"write"_s, u"openRouterAPIKey"_s, u"-"_s},
        {u"delete"_s, u"unknown"_s},
        {u"--json"_s, u"read"_s},
    };
    for (const QStringList &arguments : cases) {
        const Outcome outcome = defaults(arguments);
        EXPECT_EQ(outcome.status, exitStatus::misuse) << arguments.join(u' ').toStdString();
        EXPECT_THAT(outcome.errors, AllOf(EndsWith(".\n"), Not(HasSubstr("sk-visible"))));
        EXPECT_EQ(outcome.output, "");
    }
    EXPECT_EQ(defaults({u"write"_s, u"businessProfile"_s, u"-"_s}, "a\xff").status, exitStatus::misuse);
    EXPECT_EQ(defaults({u"write"_s, u"faqKnowledge"_s, u"-"_s}, std::string(2 << 20, 'x')).status, exitStatus::misuse);
    for (const char *typed : {"", "sk visible\n", "sk-visible\xff\n"}) {
        const Outcome outcome = defaults({u"write"_s, u"openRouterAPIKey"_s, u"-"_s}, typed);
        EXPECT_EQ(outcome.status, exitStatus::misuse);
        EXPECT_THAT(outcome.errors, AllOf(EndsWith(".\n"), Not(HasSubstr("visible"))));
    }
    EXPECT_TRUE(store.stored().empty());
    EXPECT_EQ(keys.kept, QString());
    keys.place = platform::KeyPlace::nowhere;
    EXPECT_EQ(defaults({u"write"_s, u"openRouterAPIKey"_s, u"-"_s}, "sk-1").status, exitStatus::failure);
}

TEST_F(CommandLineTest, TheKeyComesFromInputAndIsNeverShown) {
    EXPECT_THAT(defaults({u"read"_s}).output, HasSubstr("openRouterAPIKey: (not set)\n"));
    const Outcome saved = defaults({u"write"_s, u"openRouterAPIKey"_s, u"-"_s}, " sk-secret \r\nlogin: me\n");
    EXPECT_EQ(saved.status, exitStatus::success);
    EXPECT_THAT(saved.output, HasSubstr("password store"));
    EXPECT_EQ(keys.kept, u"sk-secret"_s);
    EXPECT_TRUE(store.stored().empty()) << "who keeps the key decides where";
    store.set(settingsKey::openRouterAPIKey, keys.kept);
    EXPECT_EQ(defaults({u"read"_s, u"openRouterAPIKey"_s}).output, "(set)\n");

    EXPECT_EQ(defaults({u"write"_s, u"businessProfile"_s, u"-"_s}, "We\nsell\n\n").status, exitStatus::success);
    EXPECT_EQ(store.string(settingsKey::businessProfile), u"We\nsell\n"_s);
    const std::string all = defaults({u"read"_s}).output;
    EXPECT_THAT(all, AllOf(HasSubstr("openRouterAPIKey: (set)\n"), HasSubstr("tone: Professional\n"),
                           HasSubstr("businessProfile: We\\nsell\\n\n"), Not(HasSubstr("sk-secret"))));
    EXPECT_EQ(std::ranges::count(all, '\n'), 14);
}

} // namespace quillory::test
