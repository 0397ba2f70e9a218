// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/AccessibleTree.h"
#include "EndToEnd/ReplyStory.h"

#include <csignal>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

/// A user opens another chat, and the box keeps the focus, while the reply to the previous one is on its card.
class ConversationGuard : public ReplyStory {
  protected:
    /// Tab comes when the other chat is there, but before the program has looked at it: the program is held meanwhile.
    /// It may still look before it hears of the key; then it has put a card without an end in the reply's place, and
    /// everything is tried again.
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

    /// The card before the key may still be seen for a moment.
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
