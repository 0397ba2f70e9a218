// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/AccessibleTree.h"
#include "EndToEnd/ReplyStory.h"

#include <csignal>

namespace quillory::test {

namespace {

const QString reply = QStringLiteral("Your trays are ready at nine.");

/// Stops a process for a while.
class Held {
  public:
    explicit Held(pid_t pid) : m_pid(pid) { kill(m_pid, SIGSTOP); }
    ~Held() { release(); }
    Held(const Held &) = delete;
    Held &operator=(const Held &) = delete;
    void release() const { kill(m_pid, SIGCONT); }

  private:
    pid_t m_pid;
};

/// A user who changes the chat, in which the box keeps the focus, while the reply to the chat before is on its card.
class ConversationGuard : public ReplyStory {
  protected:
    /// Tab comes when the other chat is there, but before the program has looked at it: the program is held meanwhile.
    /// It may still look before it hears of the key; then it has put a card without an end in the reply's place, and
    /// everything is tried again.
    bool tapsTabInTime(const char *from, const char *to) {
        m_tree.emplace();
        for (int attempt = 0; attempt < 5; ++attempt) {
            m_model.willAnswer(reply, Manner::answersAtOnce);
            if (!clickChat(QLatin1StringView(from)) || !replyIsReady()) {
                return false;
            }
            m_model.willAnswer(QStringLiteral("not for this chat"), Manner::answers);
            const Held held(m_assistant->pid());
            if (!switchesTo(to)) {
                return false;
            }
            keyboard::tap("Tab");
            if (tabIsTaken(held)) {
                return true;
            }
        }
        return false;
    }

    std::string blockedWith() const {
        const QString log = Assistant::log();
        return log.mid(log.lastIndexOf(QStringLiteral("accept blocked:"))).section(u'\n', 0, 0).toStdString();
    }

  private:
    bool switchesTo(const char *chat) {
        const QStringList before = messages();
        return clickChat(QLatin1StringView(chat)) &&
               waitUntil([&] { return m_tree->pageShows(messages(), before.last()); });
    }

    [[nodiscard]] QStringList messages() const {
        QStringList messages;
        for (const ChatPage::Text &text : m_page.state().texts) {
            if (text.kind == QStringLiteral("message")) {
                messages.append(text.text);
            }
        }
        return messages;
    }

    bool tabIsTaken(const Held &held) {
        const auto toPage = m_page.state().keys.count(QStringLiteral("Tab"));
        const auto taken = [] {
            return Assistant::timesLogged(QStringLiteral("accept blocked")) +
                   Assistant::timesLogged(QStringLiteral("web field, inserting"));
        };
        const int takenBefore = taken();
        held.release();
        waitUntil([&] { return taken() > takenBefore || m_page.state().keys.count(QStringLiteral("Tab")) > toPage; });
        clickBox();
        return taken() > takenBefore;
    }

    std::optional<AccessibleTree> m_tree;
};

INSTANTIATE_TEST_SUITE_P(In, ConversationGuard, everyBrowser, testing::PrintToStringParamName());

TEST_P(ConversationGuard, TabGivesNoReplyToAnotherChatUnlessHalfOfItsLinesAreThere) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_TRUE(tapsTabInTime("mariam", "bakery"));
    EXPECT_EQ(blockedWith(), "accept blocked: only 0% conversation overlap (chat switch)");
    ASSERT_TRUE(tapsTabInTime("orders", "orders-less"));
    EXPECT_EQ(blockedWith(), "accept blocked: only 37% conversation overlap (chat switch)");
    EXPECT_TRUE(m_page.text().isEmpty());
    EXPECT_FALSE(keyReached(QStringLiteral("v"))) << "nothing is pasted";
    EXPECT_THAT(Assistant::choices(), testing::IsEmpty());

    ASSERT_TRUE(tapsTabInTime("orders", "orders-half"));
    EXPECT_TRUE(boxHolds(reply));
    EXPECT_EQ(Assistant::timesLogged(QStringLiteral("accept blocked")), 2);
    EXPECT_TRUE(m_page.state().sent.isEmpty());
}

TEST_P(ConversationGuard, HoldsWhereAnotherChatMakesTheBoxAnew) {
    ASSERT_NO_FATAL_FAILURE(openChat(QStringLiteral("?remake")));
    ASSERT_TRUE(tapsTabInTime("mariam", "bakery"));
    EXPECT_EQ(blockedWith(), "accept blocked: only 0% conversation overlap (chat switch)");
    EXPECT_TRUE(m_page.text().isEmpty());
    EXPECT_THAT(Assistant::choices(), testing::IsEmpty());
}

} // namespace

} // namespace quillory::test
