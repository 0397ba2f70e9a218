// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/ReplyStory.h"

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

const QString reply = u"Hello Mariam 😊 Delivery is 1 BHD, to any place in Bahrain."_s;

class Reply : public ReplyStory {
  protected:
    Reply() { m_model.willAnswer(reply, Manner::answersAtOnce); }

    /// The conversation is asked about in the words that the model is meant to get, and nothing else is sent.
    void expectRequest(const Question &question) const {
        ASSERT_EQ(question.messages.size(), 2U);
        EXPECT_EQ(question.messages[0].role, u"system"_s);
        EXPECT_THAT(question.system().toStdString(),
                    testing::AllOf(testing::StartsWith("You draft the next reply for a business owner chatting with "
                                                       "customers on WhatsApp. The sender's business profile, for "
                                                       "facts and voice:\n<business>\nDate House, a gift shop in "
                                                       "Riffa.\n</business> The business knowledge base"),
                                   testing::HasSubstr(":\n<knowledge>\nQ: Delivery?\nA: 1 BHD.\n\nQ: Hours?\nA: 9 to "
                                                      "9\n</knowledge> The user turn contains the conversation"),
                                   testing::EndsWith(" Return ONLY the reply text, nothing else.")));
        EXPECT_EQ(question.messages[1].role, u"user"_s);
        EXPECT_EQ(question.messages[1].content.toStdString(),
                  "<conversation>\n" + transcriptOfPage() + "\n</conversation>");
    }
};

INSTANTIATE_TEST_SUITE_P(In, Reply, everyBrowser, testing::PrintToStringParamName());

TEST_P(Reply, IsDraftedForTheVisibleConversationAndTakenWithTab) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_TRUE(replyIsReady());
    ASSERT_NO_FATAL_FAILURE(expectRequest(m_model.questions().back()));
    EXPECT_THAT(transcriptAskedFor(), testing::AllOf(testing::HasSubstr("\n«customer» I found it here:\n"),
                                                     testing::HasSubstr("\n«you» Is it in stock?\n"),
                                                     testing::HasSubstr("\n«customer» Forwarded\n"),
                                                     testing::Not(testing::HasSubstr("Al Noor Bakery"))));

    keyboard::tap("Tab");
    ASSERT_TRUE(boxHolds(reply));
    expectUntouched();
    EXPECT_THAT(Assistant::choices(), testing::ElementsAre(testing::ResultOf(
                                          [](const QString &line) { return line.section(u',', 1).toStdString(); },
                                          testing::MatchesRegex("anthropic/claude-haiku-4.5,[0-9]+[.][0-9][0-9],"))));
    EXPECT_FALSE(Assistant::log().contains(u"BHD"_s)) << "words of the chat in the log";

    // Once sent, it is our own message that stands last: nothing is offered until the customer writes again.
    m_model.willAnswer(u"SKIP"_s, Manner::answersAtOnce);
    keyboard::tap("Return");
    ASSERT_TRUE(boxHolds(QString()));
    EXPECT_EQ(m_page.state().sent, QStringList{reply});
    ASSERT_TRUE(staysQuiet() || staysQuiet()) << "asking once is enough to learn that there is nothing to answer";
    EXPECT_FALSE(panelIsUp());
    m_model.willAnswer(reply, Manner::answersAtOnce);
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
    ASSERT_TRUE(m_page.order("present", u"typing…"_s));
    EXPECT_TRUE(staysQuiet());

    m_model.willAnswer(reply, Manner::answersAtOnce);
    ASSERT_TRUE(m_page.order("receive", u"Are you there?"_s));
    ASSERT_TRUE(replyIsReady());
    keyboard::tap("Escape");
    EXPECT_TRUE(panelGoes());
    EXPECT_TRUE(staysQuiet());
    EXPECT_FALSE(keyReached(u"Escape"_s)) << "Esc belonged to the card";

    ASSERT_TRUE(m_page.order("receive", u"Hello?"_s));
    EXPECT_TRUE(replyIsReady());

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
    EXPECT_TRUE(boxHolds(reply));
}

/// Who said what, and where the conversation is cut off.
class Transcript : public ReplyStory {};

INSTANTIATE_TEST_SUITE_P(In, Transcript, everyBrowser, testing::PrintToStringParamName());

TEST_P(Transcript, OfAnArabicPageIsInLogicalOrderAndMarkedByTheSideThatTheTextStandsOn) {
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

TEST_P(Transcript, OfThousandsOfMessagesOfWhichThePageHoldsThoseInView) {
    ASSERT_NO_FATAL_FAILURE(openChat(u"?long=2600"_s));
    ASSERT_TRUE(replyIsReady());
    EXPECT_THAT(transcriptAskedFor(), testing::EndsWith("\n«customer» Message 2600"));
    ASSERT_TRUE(m_page.order("scroll", u"1000"_s));
    ASSERT_TRUE(replyIsReady());
    EXPECT_THAT(transcriptAskedFor(), testing::HasSubstr("\n«you» Message 1005\n"));
}

} // namespace
} // namespace quillory::test
