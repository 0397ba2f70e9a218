// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "MonitorStory.h"
#include "Quillory/Monitor/DraftRules.h"
#include "Quillory/Records/ChoiceStats.h"

using namespace Qt::StringLiterals;

namespace quillory {
namespace {

using platform::AXAttribute;
using test::Node;
using test::text;
using testing::ElementsAre;
using testing::IsEmpty;
namespace axRole = platform::axRole;
namespace keyCode = platform::keyCode;

const QString draft = u"helo can u send me the price list"_s;
const QString rewrite = u"Hello, can you send me the price list?"_s;
const SuggestionCardData waitingCard{u"Suggested rewrite"_s, {}, false, {}, false};

struct RewriteStory : test::MonitorStory {
    Node message = page->addText(u"do you have it in blue?"_s, {300, 700, 150, 20});

    void SetUp() override {
        MonitorStory::SetUp();
        desktop.userDefaults.set(settingsKey::assistantMode, false);
        start();
    }
};

TEST_F(RewriteStory, ADraftBecomesBetterFromTypingToTab) {
    desktop.pasteboard.copy(u"the user's own"_s);
    const int announcedBefore = page->announced;
    type(draft, 200);
    EXPECT_GT(page->announced, announcedBefore) << "the conversation must be at hand when the draft is asked about";
    desktop.advance(100);
    EXPECT_THAT(newLog(), ElementsAre(u"prefetch started (33 chars, Claude Haiku 4.5)"_s));
    const auto request = desktop.urlSession.exchange(0);
    EXPECT_TRUE(request->request().body.contains(u"«customer» do you have it in blue?"_s.toUtf8()));
    EXPECT_FALSE(panelVisible());

    desktop.advance(300);
    EXPECT_THAT(newLog(), ElementsAre(u"panel visible (1 cards)"_s));
    EXPECT_THAT(cards.shown, ElementsAre(waitingCard));
    EXPECT_TRUE(desktop.press(keyCode::tab)) << "nothing to accept yet";

    request->piece(u"Hello, "_s);
    ASSERT_TRUE(runUntilShown(0, u"Hello, "_s));
    request->answer({rewrite.mid(7)});
    ASSERT_TRUE(runUntilShown(0, rewrite));
    ASSERT_TRUE(runUntilLogged(u"Claude Haiku 4.5 complete"_s));
    EXPECT_TRUE(cards.shown[0].isComplete);
    EXPECT_EQ(cards.shown[0].elapsedText, u"0.3s"_s);

    EXPECT_FALSE(desktop.press(keyCode::tab));
    EXPECT_FALSE(panelVisible());
    desktop.advance(5000);
    EXPECT_EQ(box->value(), rewrite);
    EXPECT_EQ(desktop.typed.join(u' '), u"Command-A Command-V"_s);
    EXPECT_EQ(desktop.pasteboard.string(), u"the user's own"_s);
    EXPECT_EQ(requests(), 1);
    EXPECT_THAT(newLog(),
                ElementsAre(u"Claude Haiku 4.5 complete (38 chars, 0.30s)"_s,
                            u"choice recorded: anthropic/claude-haiku-4.5"_s, u"web field, inserting via paste"_s));
}

TEST_F(RewriteStory, APrefetchedAnswerIsShownAsSoonAsItIsReady) {
    type(draft, 300);
    finish(0, rewrite);
    EXPECT_EQ(cards.shown[0].text, rewrite);
    box->setFrame({300, 600, 400, 240});
    desktop.advance(100);
    EXPECT_EQ(desktop.panelWindows.frame.y, 900 - 600 + 10) << "the panel follows the field";
    cards.clickAccept(0);
    desktop.advance(1000);
    EXPECT_EQ(box->value(), rewrite);
}

TEST_F(RewriteStory, TypingOnHidesTheCardsAndEndsTheRequest) {
    type(draft, 600);
    const auto first = desktop.urlSession.exchange(0);
    first->piece(u"Hello"_s);
    ASSERT_TRUE(runUntilShown(0, u"Hello"_s));
    type(draft + u" pls"_s, 0);
    EXPECT_FALSE(panelVisible());
    EXPECT_TRUE(first->awaitLeft());
    EXPECT_TRUE(first->wasCancelled());
    desktop.advance(700);
    const auto second = desktop.urlSession.exchange(1);
    EXPECT_TRUE(second->request().body.contains("price list pls"));
    EXPECT_THAT(cards.shown, ElementsAre(waitingCard));
    EXPECT_THAT(newLog(),
                ElementsAre(u"prefetch started (33 chars, Claude Haiku 4.5)"_s, u"panel visible (1 cards)"_s,
                            u"prefetch started (37 chars, Claude Haiku 4.5)"_s, u"panel visible (1 cards)"_s));
}

TEST_F(RewriteStory, AnAnswerThatComesTooLateIsDropped) {
    type(draft, 600);
    newLog();
    // Esc is on its way through the main queue when the answer ends.
    EXPECT_EQ(desktop.eventTaps.press(keyCode::escape), platform::TapVerdict::swallow);
    desktop.urlSession.exchange(0)->answer({rewrite});
    EXPECT_TRUE(desktop.urlSession.exchange(0)->awaitLeft());
    desktop.advance(1000);
    EXPECT_FALSE(panelVisible());
    EXPECT_THAT(newLog(), IsEmpty());
}

TEST_F(RewriteStory, EscDropsTheSuggestionForThisDraft) {
    type(draft, 600);
    EXPECT_FALSE(desktop.press(keyCode::escape));
    EXPECT_FALSE(panelVisible());
    EXPECT_TRUE(desktop.urlSession.exchange(0)->awaitLeft());
    desktop.advance(10000);
    EXPECT_EQ(requests(), 1);
    EXPECT_EQ(box->value(), draft);
    EXPECT_TRUE(desktop.press(keyCode::escape)) << "the key is the application's again";
    type(draft + u'.', 600);
    EXPECT_EQ(requests(), 2);
}

TEST_F(RewriteStory, ChunksAreShownAtMostEveryEightyMilliseconds) {
    type(draft, 600);
    const auto request = desktop.urlSession.exchange(0);
    const auto send = [&](const char *piece, int milliseconds) {
        desktop.advance(milliseconds);
        request->piece(text(piece));
        EXPECT_TRUE(request->awaitRead());
        desktop.advance(0);
        return cards.shown[0].text;
    };
    EXPECT_EQ(send("one", 0), u"one"_s);
    EXPECT_EQ(send(" two", 50), u"one"_s);
    EXPECT_EQ(send(" three", 40), u"one two three"_s);
}

TEST_F(RewriteStory, ADesktopProgramIsWrittenToDirectlyAndThenLeftInPeace) {
    const Node window = desktop.applications.launch({2, u"net.whatsapp.desktop"_s, u"WhatsApp"_s}, u"Chats"_s);
    box = window->add(axRole::textArea, {300, 800, 400, 40});
    box->settable = true;
    box->onWrite = [](const QString &written) { return written.left(24) + written.mid(24).replace(u' ', QChar::Nbsp); };
    focus(box);
    desktop.advance(100);
    EXPECT_THAT(newLog(), ElementsAre(u"focus -> AXTextArea in WhatsApp [Chats], textElement=true, chat app"_s));
    type(draft, 600);
    finish(0, rewrite);
    newLog();
    EXPECT_FALSE(desktop.press(keyCode::tab));
    EXPECT_EQ(normalized(box->value()), normalized(rewrite));
    EXPECT_EQ(newLog().last(), u"inserted via AX set"_s);
    type(rewrite, 5000);
    EXPECT_EQ(requests(), 1) << "what was accepted is not asked about again";
}

TEST_F(RewriteStory, NothingIsAskedOutsideAMessageBox) {
    const Node otherPage = browser->add(axRole::webArea);
    otherPage->set(AXAttribute::url, QUrl(u"https://example.com/"_s));
    const Node editor = desktop.applications.launch({3, u"org.example.editor"_s, std::nullopt}, u"Notes"_s);
    const Node own = desktop.applications.launch({desktop.process.ownPid, u"own"_s, u"Quillory"_s}, {});
    for (const Node &field :
         {browser->add(axRole::textField), otherPage->add(axRole::textArea), editor->add(axRole::textArea),
          own->add(axRole::textField), page->add(axRole::secureTextField)}) {
        box = field;
        focus(field);
        desktop.advance(2700);
        type(draft, 2000);
    }
    EXPECT_THAT(newLog(),
                ElementsAre(u"focus -> AXTextField in Chromium [WhatsApp], textElement=true, browser UI (excluded), "
                            "chat app"_s,
                            u"focus -> AXTextArea in Chromium [WhatsApp], textElement=true"_s,
                            u"focus -> AXTextArea in ? [Notes], textElement=true"_s,
                            u"focus -> AXSecureTextField in Chromium [WhatsApp], textElement=false"_s));
    EXPECT_EQ(requests(), 0);
    EXPECT_EQ(desktop.urlSession.requestCount(), 0);
}

TEST_F(RewriteStory, ABoxThatIsEmptyOrTooLongIsNotAskedAbout) {
    box->set(AXAttribute::placeholderValue, u"Type a message"_s);
    type(u"Type a message\n"_s, 1000);
    EXPECT_EQ(requests(), 0);
    box->set(AXAttribute::numberOfCharacters, 3000.0);
    type(draft, 600);
    EXPECT_TRUE(panelVisible());
    box->set(AXAttribute::numberOfCharacters, 3001.0);
    desktop.advance(100);
    EXPECT_FALSE(panelVisible());
}

TEST_F(RewriteStory, TheFocusMayLeaveForAMoment) {
    type(draft, 600);
    ASSERT_TRUE(panelVisible());
    const Node button = page->add(QLatin1StringView("AXButton"));
    focus(button);
    desktop.advance(2400);
    focus(box);
    desktop.advance(200);
    EXPECT_TRUE(panelVisible());
    EXPECT_EQ(requests(), 1);
    newLog();
    focus(button);
    desktop.advance(2750);
    EXPECT_FALSE(panelVisible());
    EXPECT_TRUE(desktop.urlSession.exchange(0)->awaitLeft());
    EXPECT_EQ(newLog(), QStringList{u"focus -> AXButton in Chromium [WhatsApp], textElement=false"_s});
    desktop.applications.focused.reset();
    desktop.advance(100);
    focus(box);
    desktop.advance(2000);
    EXPECT_EQ(requests(), 1) << "the draft did not change since the focus came back";
}

TEST_F(RewriteStory, ARecreatedFieldIsTakenForTheSame) {
    type(draft, 600);
    newLog();
    box->gone = true;
    box = page->add(axRole::textArea, {379.9, 800, 500, 50});
    box->setValue(draft);
    focus(box);
    desktop.advance(200);
    EXPECT_THAT(newLog(), ElementsAre(u"field re-created, adopted (chatApp=true)"_s));
    EXPECT_TRUE(panelVisible());
    finish(0, rewrite);
    EXPECT_FALSE(desktop.press(keyCode::tab));
    desktop.advance(3000);
    EXPECT_EQ(box->value(), rewrite) << "the cards were shown for the field that is gone";
}

TEST_F(RewriteStory, SwitchesCountFromTheNextTick) {
    type(draft, 600);
    desktop.userDefaults.set(settingsKey::enabled, false);
    desktop.advance(100);
    EXPECT_FALSE(panelVisible());
    desktop.userDefaults.set(settingsKey::enabled, true);
    desktop.advance(100);
    EXPECT_TRUE(panelVisible()) << "all else was kept";
    newLog();
    desktop.applications.trusted = false;
    desktop.advance(300);
    EXPECT_FALSE(panelVisible());
    desktop.applications.trusted = true;
    desktop.advance(100);
    EXPECT_THAT(newLog(), ElementsAre(u"accessibility trusted -> false"_s, u"accessibility trusted -> true"_s,
                                      u"panel visible (1 cards)"_s));
    desktop.userDefaults.set(settingsKey::debounceMs, qint64(0));
    type(draft + u" now"_s, 100);
    EXPECT_EQ(newLog().first(), u"rewrite requested (37 chars, Claude Haiku 4.5)"_s);
}

TEST_F(RewriteStory, AnUnchangedDraftShowsNothing) {
    type(u" "_s + draft, 600);
    finish(0, draft + u'\n');
    EXPECT_FALSE(panelVisible());
    EXPECT_EQ(newLog().last(), u"suggestion identical to draft, skipping"_s);
    desktop.advance(5000);
    EXPECT_EQ(requests(), 1);
}

TEST_F(RewriteStory, AFailedRequestLeavesALineAndNoPanel) {
    type(draft, 600);
    desktop.urlSession.exchange(0)->fail(u"no route to host"_s);
    ASSERT_TRUE(runUntil([&] { return !panelVisible(); }));
    EXPECT_EQ(newLog().last(), u"Claude Haiku 4.5 failed: no route to host"_s);
    desktop.advance(5000);
    EXPECT_EQ(requests(), 1);
    box = page->add(axRole::textArea); // without a frame
    focus(box);
    type({}, 0);
    type(draft, 3000);
    EXPECT_FALSE(panelVisible());
    EXPECT_TRUE(newLog().contains(u"no AX frame for element, cannot show panel"_s));
}

TEST_F(RewriteStory, TheMonitorMayGoWhileARequestRuns) {
    type(draft, 600);
    const auto request = desktop.urlSession.exchange(0);
    program.reset();
    EXPECT_TRUE(request->wasCancelled());
    desktop.advance(1000);
}

struct CompareStory : RewriteStory {
    void SetUp() override {
        RewriteStory::SetUp();
        desktop.userDefaults.set(settingsKey::compareMode, true);
    }
    // The threads of both requests race, so a request is known by its model.
    int haiku() { return modelName(0) == u"Claude Haiku 4.5"_s ? 0 : 1; }
    int gemini() { return 1 - haiku(); }
};

TEST_F(CompareStory, OneModelMayFailWhileTheOtherGoesOn) {
    type(draft, 600);
    EXPECT_THAT(newLog(), ElementsAre(u"prefetch started (33 chars, Claude Haiku 4.5 vs Gemini 2.5 Flash Lite)"_s,
                                      u"panel visible (2 cards)"_s));
    desktop.urlSession.exchange(haiku())->fail(u"broken"_s);
    ASSERT_TRUE(runUntilShown(0, u"Couldn't reach Claude Haiku 4.5"_s));
    finish(gemini(), draft);
    EXPECT_THAT(cards.shown,
                ElementsAre(SuggestionCardData{u"Option 1"_s, u"Couldn't reach Claude Haiku 4.5"_s, false, {}, true},
                            SuggestionCardData{u"Option 2"_s, draft, true, u"0.3s"_s, false}))
        << "two options are shown whatever they say";
    EXPECT_FALSE(desktop.press(keyCode::tab));
    desktop.advance(1000);
    EXPECT_THAT(desktop.typed, testing::SizeIs(2));
    const QByteArray choices = test::contentOf(ChoiceStats::fileURL(desktop.process.homeDirectory()));
    EXPECT_TRUE(choices.endsWith(",google/gemini-2.5-flash-lite,0.30,anthropic/claude-haiku-4.5=\n"));
}

TEST_F(CompareStory, WhenBothFailThePanelGoes) {
    type(draft + u" before friday"_s, 600);
    desktop.urlSession.exchange(haiku())->answer({QString(200, u'x')});
    ASSERT_TRUE(runUntilShown(0, u"Rejected: Claude Haiku 4.5 went off script"_s));
    desktop.urlSession.exchange(gemini())->respond(429);
    desktop.urlSession.exchange(gemini())->end();
    ASSERT_TRUE(runUntil([&] { return !panelVisible(); }));
}

TEST_F(CompareStory, TheDebugSwitchAcceptsOnceBothHaveEnded) {
    desktop.userDefaults.set(settingsKey::debugAcceptOnce, true);
    type(draft, 600);
    finish(gemini(), u"Other"_s);
    desktop.advance(1000);
    EXPECT_EQ(box->value(), draft);
    finish(haiku(), rewrite);
    EXPECT_EQ(newLog().last(), u"debug: auto-accepting card 0"_s);
    EXPECT_FALSE(desktop.userDefaults.boolean(settingsKey::debugAcceptOnce));
    desktop.advance(1590);
    EXPECT_EQ(box->value(), rewrite);
}

TEST_F(CompareStory, TheSameModelIsNotAskedTwice) {
    for (const char *second : {"anthropic/claude-haiku-4.5", " \t", " anthropic/claude-haiku-4.5 "}) {
        desktop.userDefaults.set(settingsKey::secondModel, text(second));
        type(draft + text(second), 600);
        EXPECT_THAT(cards.shown, ElementsAre(waitingCard));
    }
}

} // namespace
} // namespace quillory
