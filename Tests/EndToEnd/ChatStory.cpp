// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/ChatStory.h"

#include <algorithm>
#include <iostream>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

/// The program recognises English times, presences and dividers as noise; in other languages they count as messages.
bool isNoise(const ChatPage::Text &text, bool english) {
    return text.text.trimmed().size() < 2 || text.kind == u"time"_s ||
           (english && (text.kind == u"presence"_s || text.kind == u"divider"_s));
}

/// The program judges by the side that a text is on. On a right-to-left page our own messages are on the left and get
/// the customer's mark.
QString mark(const ChatPage::Text &text, bool rightToLeft) {
    if (text.kind == u"day"_s || text.kind == u"divider"_s) {
        return {};
    }
    const bool atEnd = text.side == u"us"_s;
    return atEnd != rightToLeft ? u"«you» "_s : u"«customer» "_s;
}

} // namespace

void ChatStory::SetUp() {
    if (const QString missing = Browser::whatIsMissing(GetParam()); !missing.isEmpty()) {
        ASSERT_FALSE(qEnvironmentVariableIsSet("CI")) << missing.toStdString();
        GTEST_SKIP() << missing.toStdString();
    }
}

void ChatStory::TearDown() {
    if (HasFailure()) {
        const ChatPage::State state = m_page.state();
        std::cerr << "The program's log:\n" << Assistant::log().toStdString();
        std::cerr << "The page: " << state.address.toStdString() << ", focused " << state.focused << ", keys "
                  << state.keys.join(u' ').toStdString() << ", text: " << state.text.toStdString() << std::endl;
    }
}

void ChatStory::startBrowser(const Browser::Options &options) {
    m_browser.emplace(m_page.port(), qEnvironmentVariable("HOME") + u"/browser"_s, options);
}

void ChatStory::openChat(const QString &query) {
    startAssistant();
    startBrowser(at(query));
    ASSERT_TRUE(clickBox());
    ASSERT_TRUE(logged(u", chat app"_s));
    m_blursBefore = m_page.state().blurs;
}

bool ChatStory::clickBox() {
    return waitUntil(
        [this] {
            if (const ChatPage::State state = m_page.state(); !state.address.isEmpty() && !state.focused) {
                keyboard::click(state.box);
                waitUntil([this] { return m_page.state().focused; }, 500);
            }
            return m_page.state().focused;
        },
        30'000);
}

bool ChatStory::clickChat(const QString &chat) const {
    keyboard::click(m_page.state().chats.at(chat));
    return waitUntil([&] { return m_page.state().chat == chat; });
}

bool ChatStory::logged(const QString &text, int times) {
    return waitUntil([&] { return Assistant::timesLogged(text) >= times; });
}

bool ChatStory::panelIsUp() {
    return run({"xdotool", "search", "--onlyvisible", "--class", "quillory"}, Output::dropped) == 0;
}

bool ChatStory::rewriteIsReady(const QString &draft) const {
    return waitUntil(
        [&] {
            const auto asked = m_model.questions();
            const QString log = Assistant::log();
            const auto last =
                std::max(log.lastIndexOf(u"prefetch started ("_s), log.lastIndexOf(u"rewrite requested ("_s));
            return !asked.empty() && asked.back().draft() == draft && log.lastIndexOf(u" complete ("_s) > last &&
                   log.lastIndexOf(u"panel visible"_s) > last && panelIsUp();
        },
        20'000);
}

bool ChatStory::boxHolds(const QString &text) const {
    return waitUntil([&] { return m_page.text() == text; });
}

std::string ChatStory::transcriptOfPage() const {
    const ChatPage::State state = m_page.state();
    const bool arabic = state.address.contains(u"language=ar"_s);
    QStringList lines;
    for (const ChatPage::Text &text : state.texts) {
        if (!isNoise(text, !arabic)) {
            lines.append(mark(text, arabic) + text.text.trimmed());
        }
    }
    return lines.join(u'\n').toStdString();
}

void ChatStory::expectUntouched(int keysTaken) const {
    const ChatPage::State state = m_page.state();
    EXPECT_THAT(state.sent, testing::IsEmpty());
    // The page and the box each report it.
    const int told = GetParam() == Browser::Kind::firefox ? 2 * keysTaken : 0;
    EXPECT_EQ(state.blurs, m_blursBefore + told) << "the browser lost the focus";
    EXPECT_TRUE(waitUntil([this] { return m_page.state().focused; }));
}

} // namespace quillory::test
