// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/ChatStory.h"

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

const QString draft = u"helo can u send me the price list"_s;
const QString answer = u"Hello, can you please send me the price list?"_s;

/// A user types into a chat; drafting replies is switched off.
class Rewrite : public ChatStory {
  protected:
    Rewrite() {
        m_settings = {{u"assistantMode"_s, u"false"_s}};
        m_model.willAnswer(answer, Manner::answersAtOnce);
    }

    void acceptRewrite(const QString &typed, const QString &rewrite) {
        m_model.willAnswer(rewrite, Manner::answersAtOnce);
        keyboard::type(typed);
        ASSERT_TRUE(rewriteIsReady(typed));
        ASSERT_TRUE(boxHolds(typed)) << "the draft must stay as typed";
        keyboard::tap("Tab");
        ASSERT_TRUE(boxHolds(rewrite));
    }
};

/// What does not depend on the browser runs in one of them.
class RewriteInChromium : public Rewrite {};

INSTANTIATE_TEST_SUITE_P(In, Rewrite, everyBrowser, testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(In, RewriteInChromium, chromiumAlone, testing::PrintToStringParamName());

TEST_P(Rewrite, TabPutsTheRewriteIntoTheRichTextBox) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    keyboard::copy("what the user had copied", "UTF8_STRING");
    ASSERT_NO_FATAL_FAILURE(acceptRewrite(draft, answer));
    expectUntouched();
    EXPECT_TRUE(waitUntil([] { return keyboard::clipboard("UTF8_STRING") == "what the user had copied"; }));

    const ModelService::Question question = m_model.questions().back();
    EXPECT_EQ(question.draft(), draft);
    EXPECT_EQ(question.authorization, u"Bearer made-up-key"_s);
    // A browser may list the draft as a text of the page as well, below the conversation.
    EXPECT_THAT(question.conversation(), testing::StartsWith(transcriptOfPage()));
    EXPECT_FALSE(Assistant::log().contains(u"price list"_s)) << "words of the user in the log";
}

TEST_P(Rewrite, ArabicLinesArriveUnderAnArabicLayoutAndACopiedPictureComesBack) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    const QByteArray picture = QByteArray("\x89PNG\r\n\x1a\n\0\xff", 10).repeated(500);
    keyboard::copy(picture, "image/png");
    run({"setxkbmap", "-layout", "ara,us"});
    ASSERT_NO_FATAL_FAILURE(acceptRewrite(
        u"مرحبا هل يوجد توصيل"_s,
        u"مرحباً مريم،\n\nنعم يوجد توصيل مجاني 👍🏽😊 Riffa!\nThank you!"_s));
    expectUntouched();
    EXPECT_TRUE(waitUntil([&] { return keyboard::clipboard("image/png") == picture; }));
}

TEST_P(RewriteInChromium, NothingIsAskedForOtherFields) {
    startAssistant();
    startBrowser({.host = u"shop.example"_s, .wholeWindow = true});
    // None of these addresses may be the beginning of another, or the address bar would complete it.
    const auto goTo = [this](const QString &address) {
        keyboard::tap("ctrl+l");
        keyboard::type(address);
        keyboard::tap("Return");
        return waitUntil([&] { return m_page.state().address == address; }) && clickBox();
    };
    ASSERT_TRUE(clickBox());
    ASSERT_TRUE(logged(u"textElement=true\n"_s));
    keyboard::type(draft);
    ASSERT_TRUE(boxHolds(draft)) << "a page on another host";

    keyboard::tap("ctrl+l");
    ASSERT_TRUE(logged(u"browser UI (excluded)"_s));
    ASSERT_TRUE(goTo(u"https://web.whatsapp.com/?box=password"_s));
    ASSERT_TRUE(logged(u"AXSecureTextField"_s));
    keyboard::type(draft);
    ASSERT_TRUE(boxHolds(draft)) << "a password field";

    // The message box comes last: a question about any other field would have come before this one.
    ASSERT_TRUE(goTo(u"https://web.whatsapp.com/?box=rich"_s));
    ASSERT_TRUE(logged(u", textElement=true, chat app"_s));
    keyboard::type(u"only this is a draft"_s);
    ASSERT_TRUE(rewriteIsReady(u"only this is a draft"_s));
    for (const ModelService::Question &question : m_model.questions()) {
        EXPECT_TRUE(question.draft().startsWith(u"only"_s)) << question.draft().toStdString();
    }
}

TEST_P(RewriteInChromium, ABrowserThatWasThereFirstAndBuiltNoTree) {
    startBrowser({.forceAccessibility = false});
    ASSERT_TRUE(clickBox());
    startAssistant();
    ASSERT_TRUE(logged(u", chat app"_s));
    m_blursBefore = m_page.state().blurs;
    ASSERT_NO_FATAL_FAILURE(acceptRewrite(draft, answer));
    expectUntouched();
}

} // namespace
} // namespace quillory::test
