// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Settings/AppSettings.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <gmock/gmock.h>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {
struct AppSettingsTest : testing::Test {
    SimulatedDesktop desktop;
    AppSettings settings{desktop.userDefaults, desktop.process};
};

const QByteArray goodId = R"("id":"9C1E7F2A-0B3D-4E5F-8A6B-7C8D9E0F1A2B")";
} // namespace

TEST_F(AppSettingsTest, TheFirstSourceThatHasAKeyWins) {
    desktop.process.information[u"EmbeddedAPIKey"_s] = QString();
    EXPECT_EQ(settings.apiKey(), QString());
    desktop.process.information[u"EmbeddedAPIKey"_s] = u"embedded"_s;
    desktop.process.variables[u"OPENROUTER_API_KEY"_s] = QString();
    EXPECT_EQ(settings.apiKey(), u"embedded"_s);
    desktop.process.variables[u"OPENROUTER_API_KEY"_s] = u"variable"_s;
    desktop.userDefaults.set(settingsKey::openRouterAPIKey, QString());
    EXPECT_EQ(settings.apiKey(), u"variable"_s);
    desktop.userDefaults.set(settingsKey::openRouterAPIKey, u" stored "_s);
    EXPECT_EQ(settings.apiKey(), u" stored "_s);
}

TEST_F(AppSettingsTest, EntriesComeBackAsWritten) {
    const QList<FAQEntry> entries{{.question = u"Price?\n\"€\" \\ /"_s, .answer = u"😀\0 ok"_s},
                                  {.id = QUuid(), .question = QString(), .answer = QString()},
                                  FAQEntry()};
    settings.setFAQEntries(entries);
    EXPECT_EQ(settings.faqEntries(), entries);
    EXPECT_NE(entries[2].id, FAQEntry().id);
    settings.setFAQEntries({});
    EXPECT_EQ(desktop.userDefaults.data(settingsKey::faqEntries), QByteArray("[]"));
}

TEST_F(AppSettingsTest, AMalformedListReadsAsEmptyAndStays) {
    const QByteArray members = R"(,"question":"Q","answer":"A")";
    desktop.userDefaults.set(settingsKey::faqEntries, "[{" + goodId.toLower() + members + R"(,"more":1}])");
    EXPECT_EQ(settings.faqEntries().size(), 1);
    const QByteArray cases[]{
        "junk",
        "[" + QByteArray(100'000, '['),
        "[{" + goodId + R"(,"question":"Q","answer":null}])",
        R"([{"id":"{9C1E7F2A-0B3D-4E5F-8A6B-7C8D9E0F1A2B}")" + members + "}]",
        R"([{"id":"9C1E7F2A-0B3D-4E5F-8A6B-7C8D9E0F1A2G")" + members + "}]",
        "[{" + goodId + members + "},{}]",
        "[{" + goodId + ",\"question\":\"\xff\",\"answer\":\"A\"}]",
    };
    desktop.userDefaults.set(settingsKey::faqKnowledge, u"older"_s);
    for (const QByteArray &json : cases) {
        desktop.userDefaults.set(settingsKey::faqEntries, json);
        EXPECT_TRUE(settings.faqEntries().isEmpty()) << json.left(80).data();
        EXPECT_EQ(settings.knowledgeText(), u"older"_s);
        EXPECT_EQ(desktop.userDefaults.data(settingsKey::faqEntries), json);
    }
}

TEST_F(AppSettingsTest, KnowledgeIsTheEntriesWithContent) {
    EXPECT_EQ(settings.knowledgeText(), QString());
    desktop.userDefaults.set(settingsKey::faqKnowledge, u" older "_s);
    settings.setFAQEntries({{.question = u" \t\u00a0"_s, .answer = QString()}});
    EXPECT_EQ(settings.knowledgeText(), u" older "_s);
    settings.setFAQEntries({{.question = u" Where? "_s, .answer = QString()},
                            {.question = QString(), .answer = u"\t"_s},
                            {.question = u"\n"_s, .answer = u"Riffa"_s}});
    EXPECT_EQ(settings.knowledgeText(), u"Q:  Where? \nA: \n\nQ: \n\nA: Riffa"_s);
}

} // namespace quillory::test
