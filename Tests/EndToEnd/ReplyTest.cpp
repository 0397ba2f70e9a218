// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/ReplyStory.h"

#include <QJsonObject>

namespace quillory::test {

namespace {

const QString reply = QStringLiteral("Hello Mariam 😊 Delivery is 1 BHD, to any place in Bahrain.");

class Reply : public ReplyStory {
  protected:
    Reply() { m_model.willAnswer(reply, Manner::answersAtOnce); }

    /// The conversation is asked about in the words that the model is meant to get, and nothing else is sent.
    void expectRequest(const Question &question) const {
        EXPECT_EQ(question.body, (QJsonObject{{QStringLiteral("model"), QStringLiteral("anthropic/claude-haiku-4.5")},
                                              {QStringLiteral("temperature"), 0.3},
                                              {QStringLiteral("max_tokens"), 2048},
                                              {QStringLiteral("stream"), true},
                                              {QStringLiteral("provider"),
                                               QJsonObject{{QStringLiteral("sort"), QStringLiteral("latency")}}}}));
        ASSERT_EQ(question.messages.size(), 2U);
        EXPECT_EQ(question.messages[0].role, QStringLiteral("system"));
        EXPECT_THAT(question.system().toStdString(),
                    testing::AllOf(testing::StartsWith("You draft the next reply for a business owner chatting with "
                                                       "customers on WhatsApp. The sender's business profile, for "
                                                       "facts and voice:\n<business>\nDate House, a gift shop in "
                                                       "Riffa.\n</business> The business knowledge base"),
                                   testing::HasSubstr(":\n<knowledge>\nQ: Delivery?\nA: 1 BHD.\n\nQ: Hours?\nA: 9 to "
                                                      "9\n</knowledge> The user turn contains the conversation"),
                                   testing::EndsWith(" Return ONLY the reply text, nothing else.")));
        EXPECT_EQ(question.messages[1].role, QStringLiteral("user"));
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
    EXPECT_FALSE(Assistant::log().contains(QStringLiteral("BHD"))) << "words of the chat in the log";

    // Once sent, it is our own message that stands last: nothing is offered until the customer writes again.
    m_model.willAnswer(QStringLiteral("SKIP"), Manner::answersAtOnce);
    keyboard::tap("Return");
    ASSERT_TRUE(boxHolds(QString()));
    EXPECT_EQ(m_page.state().sent, QStringList{reply});
    ASSERT_TRUE(staysQuiet() || staysQuiet()) << "asking once is enough to learn that there is nothing to answer";
    EXPECT_FALSE(panelIsUp());
    m_model.willAnswer(reply, Manner::answersAtOnce);
    ASSERT_TRUE(m_page.order("receive", QStringLiteral("شكراً! Can you bring it at ٥?")));
    EXPECT_TRUE(replyIsReady());
    EXPECT_THAT(transcriptAskedFor(), testing::HasSubstr("\n«you» Hello Mariam 😊 Delivery"));
}

TEST_P(Reply, SkipAndEscEndADraftUntilTheCustomerWritesAgain) {
    m_model.willAnswer(QStringLiteral("Skip."), Manner::answersAtOnce);
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_TRUE(logged(QStringLiteral("Claude Haiku 4.5: no reply needed (SKIP)")));
    EXPECT_TRUE(panelGoes());
    ASSERT_TRUE(waitUntil([this] { return transcriptAskedFor() == transcriptOfPage(); }));
    ASSERT_TRUE(m_page.order("present", QStringLiteral("typing…")));
    EXPECT_TRUE(staysQuiet());

    m_model.willAnswer(reply, Manner::answersAtOnce);
    ASSERT_TRUE(m_page.order("receive", QStringLiteral("Are you there?")));
    ASSERT_TRUE(replyIsReady());
    keyboard::tap("Escape");
    EXPECT_TRUE(panelGoes());
    EXPECT_TRUE(staysQuiet());
    EXPECT_FALSE(keyReached(QStringLiteral("Escape"))) << "Esc belonged to the card";

    ASSERT_TRUE(m_page.order("receive", QStringLiteral("Hello?")));
    EXPECT_TRUE(replyIsReady());

    // The last message is our own.
    m_model.willAnswer(QStringLiteral("SKIP"), Manner::answersAtOnce);
    const int skippedBefore = Assistant::timesLogged(QStringLiteral("(SKIP)"));
    const long long clickedAt = millisecondsNow();
    ASSERT_TRUE(clickChat(QStringLiteral("bakery")));
    ASSERT_TRUE(logged(QStringLiteral("(SKIP)"), skippedBefore + 1));
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
    const auto isAdopted = [] { return Assistant::timesLogged(QStringLiteral("field re-created, adopted")) > 0; };
    for (int attempt = 0; attempt < 5 && !isAdopted(); ++attempt) {
        ASSERT_TRUE(replyIsReady());
        ASSERT_TRUE(m_page.order("rebuildBox"));
        waitUntil(isAdopted, 2'000);
    }
    EXPECT_EQ(Assistant::timesLogged(QStringLiteral("field re-created, adopted (chatApp=true)")), 1);
    EXPECT_TRUE(panelIsUp());
    keyboard::tap("Tab");
    EXPECT_TRUE(boxHolds(reply));
}

} // namespace

} // namespace quillory::test
