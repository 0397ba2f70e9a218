// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/AccessibleTree.h"
#include "EndToEnd/ReplyStory.h"

namespace quillory::test {

namespace {

const QString claude = QStringLiteral("anthropic/claude-haiku-4.5");
const QString gemini = QStringLiteral("google/gemini-2.5-flash-lite");

/// A user who compares two models.
class TwoModels : public ReplyStory {
  protected:
    TwoModels() {
        m_settings[QStringLiteral("compareMode")] = QStringLiteral("true");
        m_settings[QStringLiteral("secondModel")] = gemini;
    }

    void willAnswer(Manner first, Manner second) {
        m_model.willAnswer(QStringLiteral("nothing"), Manner::answersAtOnce);
        m_model.modelWillAnswer(claude, QStringLiteral("Hello from the first model"), first);
        m_model.modelWillAnswer(gemini, QStringLiteral("Hello from the second model"), second);
    }

    static bool sinceDraft(const char *text, int times = 1) {
        return waitUntil([=] { return timesLoggedSinceDraft(QLatin1StringView(text)) >= times; });
    }

    void expectTabGives(const char *text, const std::string &record) {
        keyboard::tap("Tab");
        EXPECT_TRUE(boxHolds(QLatin1StringView(text)));
        const QStringList choices = Assistant::choices();
        ASSERT_FALSE(choices.isEmpty());
        EXPECT_THAT(choices.last().toStdString(),
                    testing::MatchesRegex("[0-9]+-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+Z," + record));
    }
};

INSTANTIATE_TEST_SUITE_P(In, TwoModels, everyBrowser, testing::PrintToStringParamName());

TEST_P(TwoModels, RaceAndTheRecordTellsWhoWon) {
    const std::string time = "[0-9]+[.][0-9][0-9]";
    willAnswer(Manner::answers, Manner::answersAtOnce);
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_TRUE(sinceDraft("panel visible (2 cards)"));
    ASSERT_TRUE(sinceDraft("Gemini 2.5 Flash Lite complete ("));
    expectTabGives("Hello from the second model", gemini.toStdString() + "," + time + "," + claude.toStdString() + "=");

    willAnswer(Manner::answersAtOnce, Manner::answersAtOnce);
    ASSERT_NO_FATAL_FAILURE(clearBox());
    ASSERT_TRUE(sinceDraft(" complete (", 2));
    expectTabGives("Hello from the first model",
                   claude.toStdString() + "," + time + "," + gemini.toStdString() + "=" + time);

    willAnswer(Manner::refuses, Manner::answersAtOnce);
    ASSERT_NO_FATAL_FAILURE(clearBox());
    ASSERT_TRUE(sinceDraft("Claude Haiku 4.5 failed: OpenRouter HTTP 429") &&
                sinceDraft("Gemini 2.5 Flash Lite complete ("));
    AccessibleTree tree;
    EXPECT_TRUE(waitUntil(
        [&] { return tree.windowShows(m_assistant->pid(), QStringLiteral("Couldn't reach Claude Haiku 4.5")); }));
    expectTabGives("Hello from the second model", gemini.toStdString() + "," + time + "," + claude.toStdString() + "=");

    willAnswer(Manner::refuses, Manner::refuses);
    ASSERT_NO_FATAL_FAILURE(clearBox());
    ASSERT_TRUE(sinceDraft(" failed: OpenRouter HTTP 429", 2));
    EXPECT_TRUE(panelGoes());
    EXPECT_TRUE(staysQuiet());
    EXPECT_TRUE(m_page.text().isEmpty());
    EXPECT_EQ(Assistant::choices().size(), 3);
    for (const Question &question : m_model.questions()) {
        EXPECT_EQ(question.messages[1].content.toStdString(),
                  "<conversation>\n" + transcriptOfPage() + "\n</conversation>");
    }
}

} // namespace

} // namespace quillory::test
