// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/ChatStory.h"
#include "RealDesktop/RealDesktop.h"

#include <QBuffer>
#include <QImage>

#include <algorithm>

namespace quillory::test {

namespace {

const QString draft = QStringLiteral("helo can u send me the price list");
const QString answer = QStringLiteral("Hello, can you please send me the price list?");

QByteArray somePicture() {
    QImage image(64, 48, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QBuffer::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

/// A user who types into a chat; replies to what customers write are not asked for.
class Rewrite : public ChatStory {
  protected:
    Rewrite() {
        m_settings = {{QStringLiteral("assistantMode"), QStringLiteral("false")}};
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
    EXPECT_EQ(question.authorization, QStringLiteral("Bearer made-up-key"));
    // A browser may show the draft once more, below the conversation.
    EXPECT_THAT(question.conversation(), testing::StartsWith(transcriptOfPage()));
    EXPECT_FALSE(Assistant::log().contains(QStringLiteral("price list"))) << "words of the user in the log";
}

TEST_P(Rewrite, SeveralLinesArriveAsWrittenAndACopiedPictureComesBack) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    const QByteArray picture = somePicture();
    keyboard::copy(picture, "image/png");
    ASSERT_NO_FATAL_FAILURE(
        acceptRewrite(draft, QStringLiteral("Hello Mariam,\n\nCan you send me the price list?\nThank you!")));
    expectUntouched();
    EXPECT_TRUE(waitUntil([&] { return keyboard::clipboard("image/png") == picture; }));
}

TEST_P(Rewrite, ArabicAndEmojiUnderAnArabicKeyboardLayout) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    keyboard::setLayout("ara,us");
    ASSERT_NO_FATAL_FAILURE(acceptRewrite(
        QStringLiteral("مرحبا هل يوجد توصيل"),
        QStringLiteral("مرحباً مريم، نعم يوجد توصيل مجاني 👍🏽😊 Riffa!")));
    expectUntouched();
}

TEST_P(Rewrite, EscDropsTheCardAndTheNextEscIsTheUsers) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_NO_FATAL_FAILURE(typeDraft(draft));
    keyboard::tap("Escape");
    keyboard::tap("Left");
    ASSERT_TRUE(waitUntil([this] { return m_page.state().keys.last() == QStringLiteral("ArrowLeft"); }));
    EXPECT_FALSE(m_page.state().keys.contains(QStringLiteral("Escape"))) << "Esc belonged to the card";
    EXPECT_EQ(m_page.text(), draft);
    EXPECT_EQ(timesAsked(draft), 1) << "a dropped draft is not asked for again";
    expectUntouched();
    // The keys are let go a moment after the card: what the page gets from then on is the user's own.
    EXPECT_TRUE(waitUntil([this] {
        keyboard::tap("Escape");
        return m_page.state().keys.contains(QStringLiteral("Escape"));
    }));
}

TEST_P(RewriteInChromium, TypingOnClosesTheRunningRequest) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    m_model.willAnswer(QStringLiteral("Hello, can you"));
    keyboard::type(draft);
    ASSERT_TRUE(waitUntil([this] { return timesAsked(draft) == 1; }));
    ASSERT_TRUE(logged(QStringLiteral("panel visible (1 cards)")));
    const int goneBefore = m_model.clientsGone();
    m_model.willAnswer(answer);
    ASSERT_NO_FATAL_FAILURE(typeDraft(QStringLiteral(" pls"), draft + QStringLiteral(" pls")));
    EXPECT_TRUE(waitUntil([&] { return m_model.clientsGone() == goneBefore + 1; }));
    expectUntouched();
}

TEST_P(RewriteInChromium, AFailingServiceLeavesTheDraftAlone) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    m_model.willAnswer(QStringLiteral("slow down"), Manner::refuses);
    keyboard::type(draft);
    ASSERT_TRUE(logged(QStringLiteral("failed: OpenRouter HTTP 429: {\"error\":{\"message\":\"slow down\"}}")));
    m_model.willAnswer(QStringLiteral("Hello, can"), Manner::breaksOff);
    const int failuresBefore = Assistant::timesLogged(QStringLiteral(" failed: "));
    keyboard::type(QStringLiteral(" pls"));
    ASSERT_TRUE(logged(QStringLiteral(" failed: "), failuresBefore + 1));
    ASSERT_TRUE(boxHolds(draft + QStringLiteral(" pls")));
    m_model.willAnswer(answer);
    ASSERT_NO_FATAL_FAILURE(typeDraft(QStringLiteral(" now"), draft + QStringLiteral(" pls now")));
    keyboard::tap("Tab");
    EXPECT_TRUE(boxHolds(answer));
    expectUntouched();
}

TEST_P(RewriteInChromium, NothingIsAskedForOtherFields) {
    startAssistant();
    startBrowser({.host = QStringLiteral("shop.example"), .wholeWindow = true});
    // No address may begin another: the address bar would complete it.
    const auto goTo = [this](const QString &address) {
        keyboard::tap("ctrl+l");
        keyboard::type(address);
        keyboard::tap("Return");
        return waitUntil([&] { return m_page.state().address == address; }) && clickBox();
    };
    ASSERT_TRUE(clickBox());
    ASSERT_TRUE(logged(QStringLiteral("textElement=true\n")));
    keyboard::type(draft);
    ASSERT_TRUE(boxHolds(draft)) << "a page on another host";

    keyboard::tap("ctrl+l");
    ASSERT_TRUE(logged(QStringLiteral("browser UI (excluded)")));
    ASSERT_TRUE(goTo(QStringLiteral("https://web.whatsapp.com/?box=password")));
    ASSERT_TRUE(logged(QStringLiteral("AXSecureTextField")));
    keyboard::type(draft);
    ASSERT_TRUE(boxHolds(draft)) << "a password field";

    // The box comes last: had any of the others asked, its question would have come before this one.
    ASSERT_TRUE(goTo(QStringLiteral("https://web.whatsapp.com/?box=rich")));
    ASSERT_TRUE(logged(QStringLiteral(", textElement=true, chat app")));
    keyboard::type(QStringLiteral("only this is a draft"));
    ASSERT_TRUE(waitUntil([this] { return timesAsked(QStringLiteral("only this is a draft")) == 1; }));
    for (const ModelService::Question &question : m_model.questions()) {
        EXPECT_TRUE(question.draft().startsWith(QStringLiteral("only"))) << question.draft().toStdString();
    }
}

TEST_P(RewriteInChromium, APlainTextArea) {
    ASSERT_NO_FATAL_FAILURE(openChat(QStringLiteral("?box=textarea")));
    ASSERT_NO_FATAL_FAILURE(acceptRewrite(draft, QStringLiteral("Hello,\ncan you send me the price list? 😊")));
    expectUntouched();
}

TEST_P(RewriteInChromium, ABrowserThatWasThereFirstAndBuiltNoTree) {
    startBrowser({.forceAccessibility = false});
    ASSERT_TRUE(clickBox());
    startAssistant();
    ASSERT_TRUE(logged(QStringLiteral(", chat app")));
    m_blursBefore = m_page.state().blurs;
    ASSERT_NO_FATAL_FAILURE(acceptRewrite(draft, answer));
    expectUntouched();
}

TEST_P(RewriteInChromium, AFrozenBrowserDoesNotStopTheProgram) {
    ASSERT_NO_FATAL_FAILURE(openChat());
    ASSERT_NO_FATAL_FAILURE(typeDraft(draft));
    m_browser->freeze();
    RealDesktop::setAccessibilityEnabled(false);
    EXPECT_TRUE(logged(QStringLiteral("accessibility trusted -> false"))) << "the tick waits for the browser";
    RealDesktop::setAccessibilityEnabled(true);
    ASSERT_TRUE(logged(QStringLiteral("accessibility trusted -> true"), 2));
    EXPECT_TRUE(m_assistant->isRunning());
    m_browser->thaw();
    ASSERT_NO_FATAL_FAILURE(typeDraft(QStringLiteral(" pls"), draft + QStringLiteral(" pls")));
    keyboard::tap("Tab");
    EXPECT_TRUE(boxHolds(answer));
    expectUntouched();
}

} // namespace

} // namespace quillory::test
