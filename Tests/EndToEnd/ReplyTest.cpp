// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/ChatStory.h"
#include "RealDesktop/AccessibleTree.h"

#include <csignal>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

/// A shop owner looks at a chat and has typed nothing.
class Reply : public ChatStory {
  protected:
    /// The business profile and the FAQs are set, and the model has an answer.
    Reply() {
        m_settings = {{u"businessProfile"_s, u"\nDate House, a gift shop in Riffa.\n"_s},
                      {u"faqEntries"_s,
                       uR"([{"id":"5F0C1E5E-2F0B-4B52-8B0B-1F1C3E8A9D10","question":"Delivery?","answer":"1 BHD."},)"
                       R"({"id":"5F0C1E5E-2F0B-4B52-8B0B-1F1C3E8A9D11","question":"Hours?","answer":"9 to 9"}])"_s}};
        m_model.willAnswer(m_reply, Manner::answersAtOnce);
    }

    /// The conversation that a reply was last asked for.
    [[nodiscard]] std::string transcriptAskedFor() const {
        const auto questions = m_model.questions();
        return questions.empty() || !questions.back().isForReply ? std::string() : questions.back().conversation();
    }
    /// Whether a finished reply to what the page shows is on its card.
    [[nodiscard]] bool replyIsReady() const {
        const bool ready = waitUntil([this] {
            return loggedSinceDraft(u" complete ("_s) && transcriptAskedFor() == transcriptOfPage() && panelIsUp();
        });
        EXPECT_EQ(transcriptAskedFor(), transcriptOfPage());
        return ready;
    }
    /// Whether the log contains the text since a reply was last asked for.
    [[nodiscard]] static bool loggedSinceDraft(const QString &text) {
        const QString log = Assistant::log();
        return log.indexOf(text, std::max<qsizetype>(0, log.lastIndexOf(u"drafting reply ("_s))) >= 0;
    }
    /// Whether no request comes for longer than the program would wait before it asks about a conversation again.
    [[nodiscard]] bool staysQuiet() const {
        const auto before = m_model.questions().size();
        return !waitUntil([&] { return m_model.questions().size() > before; }, 1500);
    }

    const QString m_reply = u"Hello Mariam 😊 Delivery is 1 BHD, to any place in Bahrain."_s;
};

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

    // Once it is sent, the last message is our own: nothing is offered until the customer writes again.
    m_model.willAnswer(u"SKIP"_s, Manner::answersAtOnce);
    keyboard::tap("Return");
    ASSERT_TRUE(boxHolds(QString()));
    EXPECT_EQ(m_page.state().sent, QStringList{m_reply});
    ASSERT_TRUE(staysQuiet() || staysQuiet()) << "it was told that there is nothing to answer, and asked again";
    EXPECT_FALSE(panelIsUp());
    m_model.willAnswer(m_reply, Manner::answersAtOnce);
    ASSERT_TRUE(m_page.receive(u"شكراً! Can you bring it at ٥?"_s));
    EXPECT_TRUE(replyIsReady());
    EXPECT_THAT(transcriptAskedFor(), testing::HasSubstr("\n«you» Hello Mariam 😊 Delivery"));

    keyboard::tap("Escape");
    EXPECT_TRUE(panelGoes());
    EXPECT_FALSE(keyReached(u"Escape"_s)) << "Esc belonged to the card";
    EXPECT_TRUE(staysQuiet());
    keyboard::tap("Escape");
    EXPECT_TRUE(waitUntil([this] { return keyReached(u"Escape"_s); })) << "the next Esc is the user's";
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

/// A user opens another chat while the reply to the previous one is on its card. The box keeps the focus.
class ConversationGuard : public Reply {
  protected:
    /// Presses Tab when the other chat is open but the program, which is stopped meanwhile, has not looked at it yet.
    /// Once continued, the program may still look before it hears of the key. Then a card that never finishes has
    /// replaced the reply, and the test tries again.
    bool tapsTabInTime() {
        m_tree.emplace();
        for (int attempt = 0; attempt < 5; ++attempt) {
            m_model.willAnswer(m_reply, Manner::answersAtOnce);
            if (!clickChat(u"mariam"_s) || !waitUntil(hasDraftedSinceTab) || !replyIsReady()) {
                return false;
            }
            m_model.willAnswer(u"not for this chat"_s, Manner::answers);
            const auto tabsAtPage = [this] { return m_page.state().keys.count(u"Tab"_s); };
            const auto tabsBefore = tabsAtPage();
            const int takenBefore = timesTaken();
            kill(m_assistant->pid(), SIGSTOP);
            const bool isSwitched = switchesToBakery();
            keyboard::tap("Tab");
            kill(m_assistant->pid(), SIGCONT);
            waitUntil([&] { return timesTaken() > takenBefore || tabsAtPage() > tabsBefore; });
            clickBox();
            if (!isSwitched || timesTaken() > takenBefore) {
                return isSwitched;
            }
        }
        return false;
    }

    void expectNoReplyToAnotherChat() {
        ASSERT_TRUE(tapsTabInTime());
        EXPECT_EQ(Assistant::timesLogged(u"accept blocked: only 0% conversation overlap (chat switch)"_s), 1);
        EXPECT_TRUE(m_page.text().isEmpty());
        EXPECT_FALSE(keyReached(u"v"_s)) << "nothing is pasted";
        EXPECT_THAT(Assistant::choices(), testing::IsEmpty());
    }

  private:
    bool switchesToBakery() {
        const QStringList before = messages();
        return clickChat(u"bakery"_s) && waitUntil([&] { return m_tree->pageShows(messages(), before.last()); });
    }

    [[nodiscard]] QStringList messages() const {
        QStringList messages;
        for (const ChatPage::Text &text : m_page.state().texts) {
            if (text.kind == u"message"_s) {
                messages.append(text.text);
            }
        }
        return messages;
    }

    /// The previous card may still be up for a moment.
    static bool hasDraftedSinceTab() {
        const QString log = Assistant::log();
        const auto taken = std::max(log.lastIndexOf(u"accept blocked"_s), log.lastIndexOf(u"web field, inserting"_s));
        return log.lastIndexOf(u"drafting reply ("_s) > taken;
    }

    static int timesTaken() {
        return Assistant::timesLogged(u"accept blocked"_s) + Assistant::timesLogged(u"web field, inserting"_s);
    }

    std::optional<AccessibleTree> m_tree;
};

INSTANTIATE_TEST_SUITE_P(In, ConversationGuard, everyBrowser, testing::PrintToStringParamName());

TEST_P(ConversationGuard, TabGivesNoReplyToAnotherChat) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    expectNoReplyToAnotherChat();
}

TEST_P(ConversationGuard, HoldsWhereAnotherChatMakesTheBoxAnew) {
    ASSERT_NO_FATAL_FAILURE(openChat(u"?remake"_s));
    expectNoReplyToAnotherChat();
}

} // namespace
} // namespace quillory::test
