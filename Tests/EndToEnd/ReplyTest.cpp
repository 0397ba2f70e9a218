// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/ReplyStory.h"

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

class Reply : public ReplyStory {};

INSTANTIATE_TEST_SUITE_P(In, Reply, everyBrowser, testing::PrintToStringParamName());

TEST_P(Reply, IsDraftedForTheVisibleConversationAndTakenWithTab) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_TRUE(replyIsReady());
    EXPECT_THAT(m_model.questions().back().system.toStdString(),
                testing::AllOf(testing::HasSubstr("<business>\nDate House, a gift shop in Riffa.\n</business>"),
                               testing::HasSubstr("<knowledge>\nQ: Delivery?\nA: 1 BHD.\n\nQ: Hours?\nA: 9 to 9\n")));
    EXPECT_THAT(transcriptAskedFor(), testing::AllOf(testing::HasSubstr("\n«customer» I found it here:\n"),
                                                     testing::HasSubstr("\n«you» Is it in stock?\n"),
                                                     testing::HasSubstr("\n«customer» Forwarded\n"),
                                                     testing::Not(testing::HasSubstr("Al Noor Bakery"))));

    keyboard::tap("Tab");
    ASSERT_TRUE(boxHolds(m_reply));
    expectUntouched();
    EXPECT_THAT(Assistant::choices(), testing::ElementsAre(testing::ResultOf(
                                          [](const QString &line) { return line.section(u',', 1).toStdString(); },
                                          testing::MatchesRegex("anthropic/claude-haiku-4.5,[0-9]+[.][0-9][0-9],"))));
    EXPECT_FALSE(Assistant::log().contains(u"BHD"_s)) << "words of the chat in the log";

    // Once sent, it is our own message that stands last: nothing is offered until the customer writes again.
    m_model.willAnswer(u"SKIP"_s, Manner::answersAtOnce);
    keyboard::tap("Return");
    ASSERT_TRUE(boxHolds(QString()));
    EXPECT_EQ(m_page.state().sent, QStringList{m_reply});
    ASSERT_TRUE(staysQuiet() || staysQuiet()) << "asking once is enough to learn that there is nothing to answer";
    EXPECT_FALSE(panelIsUp());
    m_model.willAnswer(m_reply, Manner::answersAtOnce);
    ASSERT_TRUE(m_page.order("receive", u"شكراً! Can you bring it at ٥?"_s));
    EXPECT_TRUE(replyIsReady());
    EXPECT_THAT(transcriptAskedFor(), testing::HasSubstr("\n«you» Hello Mariam 😊 Delivery"));
}

TEST_P(Reply, SkipAndEscEndADraftUntilTheCustomerWritesAgain) {
    m_model.willAnswer(u"Skip."_s, Manner::answersAtOnce);
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_TRUE(logged(u"Claude Haiku 4.5: no reply needed (SKIP)"_s));
    EXPECT_TRUE(panelGoes());
    ASSERT_TRUE(waitUntil([this] { return transcriptAskedFor() == transcriptOfPage(); }));

    m_model.willAnswer(m_reply, Manner::answersAtOnce);
    ASSERT_TRUE(m_page.order("receive", u"Are you there?"_s));
    ASSERT_TRUE(replyIsReady());
    keyboard::tap("Escape");
    EXPECT_TRUE(panelGoes());
    EXPECT_TRUE(staysQuiet());
    EXPECT_FALSE(keyReached(u"Escape"_s)) << "Esc belonged to the card";

    // The last message is our own.
    m_model.willAnswer(u"SKIP"_s, Manner::answersAtOnce);
    const int skippedBefore = Assistant::timesLogged(u"(SKIP)"_s);
    const long long clickedAt = millisecondsNow();
    ASSERT_TRUE(clickChat(u"bakery"_s));
    ASSERT_TRUE(logged(u"(SKIP)"_s, skippedBefore + 1));
    EXPECT_LT(millisecondsNow() - clickedAt, 1500) << "a chat is read and answered within about a second";
    EXPECT_THAT(transcriptAskedFor(), testing::EndsWith("\n«you» Received, we pay on Sunday"));
    EXPECT_TRUE(panelGoes());
    EXPECT_TRUE(staysQuiet());
    EXPECT_TRUE(m_page.text().isEmpty());
    EXPECT_TRUE(m_page.state().sent.isEmpty());
    keyboard::tap("Escape");
    EXPECT_TRUE(waitUntil([this] { return keyReached(u"Escape"_s); })) << "the next Esc is the user's";
}

TEST_P(Reply, ABoxThatIsMadeAnewWhileItHasTheFocus) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    // A busy browser may give the new box no place at first; then it counts as another one, and all begins anew.
    const auto isAdopted = [] { return Assistant::timesLogged(u"field re-created, adopted"_s) > 0; };
    for (int attempt = 0; attempt < 5 && !isAdopted(); ++attempt) {
        ASSERT_TRUE(replyIsReady());
        ASSERT_TRUE(m_page.order("rebuildBox"));
        waitUntil(isAdopted, 2'000);
    }
    EXPECT_EQ(Assistant::timesLogged(u"field re-created, adopted (chatApp=true)"_s), 1);
    EXPECT_TRUE(panelIsUp());
    keyboard::tap("Tab");
    EXPECT_TRUE(boxHolds(m_reply));
}

TEST_P(Reply, IsDraftedForAnArabicPageByTheSideThatEachTextStandsOn) {
    const QString inBoth = u"هلا مريم! التوصيل Riffa بدينار ١ 🚚"_s;
    m_model.willAnswer(inBoth, Manner::answersAtOnce);
    ASSERT_NO_FATAL_FAILURE(openChat(u"?language=ar&box=textarea"_s));
    ASSERT_TRUE(replyIsReady());
    EXPECT_THAT(transcriptAskedFor(),
                testing::AllOf(testing::HasSubstr("\n«you» الأزرق Blue Box رقم 7، هل هو متوفر؟\n"),
                               testing::HasSubstr("\n«customer» نعم متوفر ٣ قطع، والتوصيل إلى Riffa مجاني 🚚\n"),
                               testing::HasSubstr("\n٢ رسائل غير مقروءة\n")));
    keyboard::tap("Tab");
    EXPECT_TRUE(boxHolds(inBoth));
    expectUntouched();
}

TEST_P(Reply, OfTwoModelsGoesIntoTheBoxAndTheRecordTellsWhichWon) {
    const QString claude = u"anthropic/claude-haiku-4.5"_s;
    const QString gemini = u"google/gemini-2.5-flash-lite"_s;
    m_settings[u"compareMode"_s] = u"true"_s;
    m_settings[u"secondModel"_s] = gemini;
    m_model.willAnswer(u"Hello from the first model"_s);
    m_model.modelWillAnswer(gemini, u"Hello from the second model"_s, Manner::answersAtOnce);
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_TRUE(waitUntil([] {
        return loggedSinceDraft(u"panel visible (2 cards)"_s) &&
               loggedSinceDraft(u"Gemini 2.5 Flash Lite complete ("_s);
    }));
    keyboard::tap("Tab");
    EXPECT_TRUE(boxHolds(u"Hello from the second model"_s));
    EXPECT_THAT(Assistant::choices().value(0).toStdString(),
                testing::MatchesRegex("[0-9]+-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+Z," + gemini.toStdString() +
                                      ",[0-9]+[.][0-9][0-9]," + claude.toStdString() + "="));
}

} // namespace
} // namespace quillory::test
