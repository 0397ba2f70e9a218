// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/ChatStory.h"
#include "RealDesktop/RealDesktop.h"

#include <algorithm>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

const QString draft = u"helo can u send me the price list"_s;
const QString answer = u"Hello, can you please send me the price list?"_s;

/// A user who types into a chat; replies to what customers write are not asked for.
class Rewrite : public ChatStory {
  protected:
    Rewrite() {
        m_settings = {{u"assistantMode"_s, u"false"_s}};
        m_model.willAnswer(answer);
    }

    /// Types and waits until the card for all of it can be accepted. A slow machine may pause long enough for the
    /// program to ask about a part of it first. The answer ends only once the card is up: so the keys are taken then.
    void typeDraft(const QString &text, const QString &whole) {
        keyboard::type(text);
        ASSERT_TRUE(waitUntil([&] { return timesAsked(whole) > 0 && cameSinceRequest("panel visible"); }, 20'000));
        m_model.mayEnd();
        ASSERT_TRUE(waitUntil([&] { return cameSinceRequest(" complete ("); }, 20'000));
        ASSERT_TRUE(boxHolds(whole)) << "the draft must stay as typed";
    }
    void typeDraft(const QString &text) { typeDraft(text, text); }

    [[nodiscard]] long timesAsked(const QString &text) const {
        const auto questions = m_model.questions();
        return std::count_if(questions.begin(), questions.end(),
                             [&](const auto &asked) { return asked.draft() == text; });
    }

    static bool cameSinceRequest(const char *event) {
        const QString log = Assistant::log();
        const auto last = [&](const char *text) { return log.lastIndexOf(QLatin1StringView(text)); };
        return last(event) > std::max(last("prefetch started ("), last("rewrite requested ("));
    }

    void acceptRewrite(const QString &typed, const QString &rewrite) {
        m_model.willAnswer(rewrite);
        ASSERT_NO_FATAL_FAILURE(typeDraft(typed));
        keyboard::tap("Tab");
        ASSERT_TRUE(boxHolds(rewrite));
    }
};

/// What does not depend on the browser is tried in one.
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
    // A browser may show the draft once more, below the conversation.
    EXPECT_THAT(question.conversation(), testing::StartsWith(transcriptOfPage()));
    EXPECT_FALSE(Assistant::log().contains(u"price list"_s)) << "words of the user in the log";
}

TEST_P(Rewrite, SeveralLinesArriveAsWrittenAndACopiedPictureComesBack) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    const QByteArray picture = QByteArray("\x89PNG\r\n\x1a\n\0\xff", 10).repeated(500);
    keyboard::copy(picture, "image/png");
    ASSERT_NO_FATAL_FAILURE(acceptRewrite(draft, u"Hello Mariam,\n\nCan you send me the price list?\nThank you!"_s));
    expectUntouched();
    EXPECT_TRUE(waitUntil([&] { return keyboard::clipboard("image/png") == picture; }));
}

TEST_P(Rewrite, ArabicAndEmojiUnderAnArabicKeyboardLayout) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    run({"setxkbmap", "-layout", "ara,us"});
    ASSERT_NO_FATAL_FAILURE(
        acceptRewrite(u"مرحبا هل يوجد توصيل"_s,
                      u"مرحباً مريم، نعم يوجد توصيل مجاني 👍🏽😊 Riffa!"_s));
    expectUntouched();
}

TEST_P(Rewrite, EscDropsTheCardAndTheNextEscIsTheUsers) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_NO_FATAL_FAILURE(typeDraft(draft));
    keyboard::tap("Escape");
    keyboard::tap("Left");
    ASSERT_TRUE(waitUntil([this] { return m_page.state().keys.last() == u"ArrowLeft"_s; }));
    EXPECT_FALSE(m_page.state().keys.contains(u"Escape"_s)) << "Esc belonged to the card";
    EXPECT_EQ(m_page.text(), draft);
    EXPECT_EQ(timesAsked(draft), 1) << "a dropped draft is not asked for again";
    expectUntouched();
    // The keys are let go a moment after the card: what the page gets from then on is the user's own.
    EXPECT_TRUE(waitUntil([this] {
        keyboard::tap("Escape");
        return m_page.state().keys.contains(u"Escape"_s);
    }));
}

TEST_P(RewriteInChromium, ASwitchThatIsTurnedElsewhereCountsAtOnce) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_NO_FATAL_FAILURE(typeDraft(draft));
    ASSERT_TRUE(waitUntil(panelIsUp));
    const QString enabled = u"enabled"_s;
    Assistant::set(enabled, u"false"_s);
    EXPECT_TRUE(panelGoes());
    const auto asked = m_model.questions().size();
    keyboard::type(u" today"_s);
    EXPECT_FALSE(waitUntil([&] { return panelIsUp() || m_model.questions().size() > asked; }, 1500))
        << "for longer than a pause";
    Assistant::set(enabled, u"true"_s);
    ASSERT_NO_FATAL_FAILURE(typeDraft(u" pls"_s, draft + u" today pls"_s));
    EXPECT_TRUE(waitUntil(panelIsUp));
    expectUntouched(0);
}

TEST_P(RewriteInChromium, NothingIsAskedForOtherFields) {
    startAssistant();
    startBrowser({.host = u"shop.example"_s, .wholeWindow = true});
    // No address may begin another: the address bar would complete it.
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

    // The box comes last: had any of the others asked, its question would have come before this one.
    ASSERT_TRUE(goTo(u"https://web.whatsapp.com/?box=rich"_s));
    ASSERT_TRUE(logged(u", textElement=true, chat app"_s));
    keyboard::type(u"only this is a draft"_s);
    ASSERT_TRUE(waitUntil([this] { return timesAsked(u"only this is a draft"_s) == 1; }));
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

TEST_P(RewriteInChromium, AFrozenBrowserDoesNotStopTheProgram) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_NO_FATAL_FAILURE(typeDraft(draft));
    m_browser->freeze();
    RealDesktop::setAccessibilityEnabled(false);
    EXPECT_TRUE(logged(u"accessibility trusted -> false"_s)) << "the tick waits for the browser";
    RealDesktop::setAccessibilityEnabled(true);
    ASSERT_TRUE(logged(u"accessibility trusted -> true"_s, 2));
    EXPECT_TRUE(m_assistant->isRunning());
    m_browser->thaw();
    ASSERT_NO_FATAL_FAILURE(typeDraft(u" pls"_s, draft + u" pls"_s));
    keyboard::tap("Tab");
    EXPECT_TRUE(boxHolds(answer));
    expectUntouched();
}

} // namespace
} // namespace quillory::test
