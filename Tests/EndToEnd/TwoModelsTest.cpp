// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/AccessibleTree.h"
#include "EndToEnd/ReplyStory.h"

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

const QString claude = u"anthropic/claude-haiku-4.5"_s;
const QString gemini = u"google/gemini-2.5-flash-lite"_s;

/// A user who compares two models.
class TwoModels : public ReplyStory {
  protected:
    TwoModels() {
        m_settings[u"compareMode"_s] = u"true"_s;
        m_settings[u"secondModel"_s] = gemini;
    }

    void willAnswer(Manner first, Manner second) {
        m_model.willAnswer(u"nothing"_s, Manner::answersAtOnce);
        m_model.modelWillAnswer(claude, u"Hello from the first model"_s, first);
        m_model.modelWillAnswer(gemini, u"Hello from the second model"_s, second);
    }

    static bool sinceDraft(const char *text, int times = 1) {
        return waitUntil([=] { return timesLoggedSinceDraft(QLatin1StringView(text)) >= times; });
    }

    /// Only the second model has an answer.
    void expectTabGivesTheSecond() {
        keyboard::tap("Tab");
        EXPECT_TRUE(boxHolds(u"Hello from the second model"_s));
        EXPECT_THAT(Assistant::choices().value(Assistant::choices().size() - 1).toStdString(),
                    testing::MatchesRegex("[0-9]+-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+Z," + gemini.toStdString() +
                                          ",[0-9]+[.][0-9][0-9]," + claude.toStdString() + "="));
    }
};

INSTANTIATE_TEST_SUITE_P(In, TwoModels, everyBrowser, testing::PrintToStringParamName());

TEST_P(TwoModels, RaceAndTheRecordTellsWhoWon) {
    willAnswer(Manner::answers, Manner::answersAtOnce);
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_TRUE(sinceDraft("panel visible (2 cards)"));
    ASSERT_TRUE(sinceDraft("Gemini 2.5 Flash Lite complete ("));
    expectTabGivesTheSecond();

    willAnswer(Manner::refuses, Manner::answersAtOnce);
    ASSERT_NO_FATAL_FAILURE(clearBox());
    ASSERT_TRUE(sinceDraft("Claude Haiku 4.5 failed: OpenRouter HTTP 429") &&
                sinceDraft("Gemini 2.5 Flash Lite complete ("));
    AccessibleTree tree;
    EXPECT_TRUE(waitUntil([&] { return tree.windowShows(m_assistant->pid(), u"Couldn't reach Claude Haiku 4.5"_s); }));
    expectTabGivesTheSecond();

    willAnswer(Manner::refuses, Manner::refuses);
    ASSERT_NO_FATAL_FAILURE(clearBox());
    ASSERT_TRUE(sinceDraft(" failed: OpenRouter HTTP 429", 2));
    EXPECT_TRUE(panelGoes());
    EXPECT_TRUE(staysQuiet());
    EXPECT_TRUE(m_page.text().isEmpty());
    EXPECT_EQ(Assistant::choices().size(), 2);
}

} // namespace
} // namespace quillory::test
