// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/Assistant.h"
#include "EndToEnd/Browser.h"
#include "EndToEnd/ChatPage.h"
#include "EndToEnd/Keyboard.h"
#include "EndToEnd/ModelService.h"
#include "RealDesktop/RealDesktop.h"

#include <QBuffer>
#include <QImage>

#include <gmock/gmock.h>

#include <algorithm>
#include <iostream>
#include <optional>

namespace quillory::test {

namespace {

using Manner = ModelService::Manner;

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

/// A user who types into a web chat while the program runs.
class EndToEnd : public testing::Test {
  protected:
    void SetUp() override {
        if (const QString missing = Browser::whatIsMissing(); !missing.isEmpty()) {
            ASSERT_FALSE(qEnvironmentVariableIsSet("CI")) << missing.toStdString();
            GTEST_SKIP() << missing.toStdString();
        }
        m_model.willAnswer(answer);
    }

    void TearDown() override {
        if (HasFailure()) {
            const ChatPage::State state = m_page.state();
            std::cerr << "The program's log:\n" << Assistant::log().toStdString();
            std::cerr << "The page: " << state.address.toStdString() << ", focused " << state.focused << ", keys "
                      << state.keys.join(u' ').toStdString() << ", text: " << state.text.toStdString() << std::endl;
        }
    }

    void startAssistant() { m_assistant.emplace(m_model.address()); }
    void startBrowser(const Browser::Options &options) {
        m_browser.emplace(m_page.port(), qEnvironmentVariable("HOME") + QStringLiteral("/browser"), options);
    }

    /// The box has the focus and the program follows it.
    void openChat(const Browser::Options &options) {
        startAssistant();
        startBrowser(options);
        ASSERT_TRUE(clickBox());
        ASSERT_TRUE(logged(QStringLiteral(", chat app")));
        m_blursBefore = m_page.state().blurs;
    }

    /// Clicks where the page says that its box is, until the window is there and has taken the click.
    bool clickBox() {
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

    static bool logged(const QString &text, int times = 1) {
        return waitUntil([&] { return Assistant::timesLogged(text) >= times; });
    }

    bool boxHolds(const QString &text) {
        return waitUntil([&] { return m_page.text() == text; });
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
                             [&](const auto &asked) { return asked.draft == text; });
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

    void expectUntouched() {
        const ChatPage::State state = m_page.state();
        EXPECT_THAT(state.sent, testing::IsEmpty());
        EXPECT_EQ(state.blurs, m_blursBefore) << "the browser lost the focus";
        EXPECT_TRUE(state.focused);
    }

    ModelService m_model;
    ChatPage m_page;
    std::optional<Assistant> m_assistant;
    std::optional<Browser> m_browser;
    int m_blursBefore = 0;
};

TEST_F(EndToEnd, TabPutsTheRewriteIntoTheRichTextBox) {
    ASSERT_NO_FATAL_FAILURE(openChat({}));
    keyboard::copy("what the user had copied", "UTF8_STRING");
    ASSERT_NO_FATAL_FAILURE(acceptRewrite(draft, answer));
    expectUntouched();
    EXPECT_TRUE(waitUntil([] { return keyboard::clipboard("UTF8_STRING") == "what the user had copied"; }));

    const ModelService::Question question = m_model.questions().back();
    EXPECT_EQ(question.draft, draft);
    EXPECT_EQ(question.authorization, QStringLiteral("Bearer made-up-key"));
    EXPECT_TRUE(question.system.contains(QStringLiteral("«customer» The blue one with the dates. Is it in stock?\n")));
    EXPECT_TRUE(question.system.contains(QStringLiteral("«you» Yes it is, and delivery in Riffa is free.")));
    EXPECT_FALSE(question.system.contains(QStringLiteral("Al Noor Bakery"))) << "the chat list is not the conversation";
    EXPECT_FALSE(Assistant::log().contains(QStringLiteral("price list"))) << "words of the user in the log";
}

TEST_F(EndToEnd, SeveralLinesArriveAsWrittenAndACopiedPictureComesBack) {
    ASSERT_NO_FATAL_FAILURE(openChat({}));
    const QByteArray picture = somePicture();
    keyboard::copy(picture, "image/png");
    ASSERT_NO_FATAL_FAILURE(
        acceptRewrite(draft, QStringLiteral("Hello Mariam,\n\nCan you send me the price list?\nThank you!")));
    expectUntouched();
    EXPECT_TRUE(waitUntil([&] { return keyboard::clipboard("image/png") == picture; }));
}

TEST_F(EndToEnd, ArabicAndEmojiUnderAnArabicKeyboardLayout) {
    ASSERT_NO_FATAL_FAILURE(openChat({}));
    keyboard::setLayout("ara,us");
    ASSERT_NO_FATAL_FAILURE(acceptRewrite(
        QStringLiteral("مرحبا هل يوجد توصيل"),
        QStringLiteral("مرحباً مريم، نعم يوجد توصيل مجاني 👍🏽😊 Riffa!")));
    expectUntouched();
}

TEST_F(EndToEnd, EscDropsTheCardAndTheNextEscIsTheUsers) {
    ASSERT_NO_FATAL_FAILURE(openChat({}));
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

TEST_F(EndToEnd, TypingOnClosesTheRunningRequest) {
    ASSERT_NO_FATAL_FAILURE(openChat({}));
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

TEST_F(EndToEnd, AFailingServiceLeavesTheDraftAlone) {
    ASSERT_NO_FATAL_FAILURE(openChat({}));
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

TEST_F(EndToEnd, NothingIsAskedForOtherFields) {
    startAssistant();
    startBrowser({QStringLiteral("https://shop.example/"), true, true});
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
        EXPECT_TRUE(question.draft.startsWith(QStringLiteral("only"))) << question.draft.toStdString();
    }
}

TEST_F(EndToEnd, APlainTextArea) {
    ASSERT_NO_FATAL_FAILURE(openChat({QStringLiteral("https://web.whatsapp.com/?box=textarea"), false, true}));
    ASSERT_NO_FATAL_FAILURE(acceptRewrite(draft, QStringLiteral("Hello,\ncan you send me the price list? 😊")));
    expectUntouched();
}

TEST_F(EndToEnd, ABrowserThatWasThereFirstAndBuiltNoTree) {
    Browser::Options options;
    options.forceAccessibility = false;
    startBrowser(options);
    ASSERT_TRUE(clickBox());
    startAssistant();
    ASSERT_TRUE(logged(QStringLiteral(", chat app")));
    m_blursBefore = m_page.state().blurs;
    ASSERT_NO_FATAL_FAILURE(acceptRewrite(draft, answer));
    expectUntouched();
}

TEST_F(EndToEnd, AFrozenBrowserDoesNotStopTheProgram) {
    ASSERT_NO_FATAL_FAILURE(openChat({}));
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
