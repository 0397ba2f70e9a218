// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Panel/SuggestionPanelController.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace quillory::test {
namespace {

using namespace Qt::StringLiterals;
using platform::Point;
using platform::Rect;
using platform::Screen;
using platform::Size;
using platform::TapVerdict;
using testing::ElementsAre;
namespace eventFlag = platform::eventFlag;
namespace keyCode = platform::keyCode;

const QString label = u"Suggested rewrite"_s;
const QString tapFailed = u"could not create event tap (Tab/Esc shortcuts unavailable)"_s;
// In accessibility coordinates: on the primary screen of 900 points, screen coordinates 300 to 340.
const Rect field{200, 560, 500, 40};

SuggestionCardData card(const std::optional<QString> &text, bool isComplete = false) {
    return {label, text, isComplete, std::nullopt, false};
}

struct SuggestionPanel : testing::Test {
    SuggestionPanel() {
        controller->onAcceptCard = [this](int index) { accepted.append(index); };
        controller->onDismiss = [this] { ++dismissed; };
    }
    TapVerdict press(platform::KeyCode key, platform::EventFlags flags = 0) {
        return desktop.eventTaps.press(key, flags);
    }
    void show(const SuggestionCards &shown, const Rect &above = field) { controller->show(shown, above, element); }

    SimulatedDesktop desktop;
    SimulatedCards cards;
    platform::AXUIElement element =
        desktop.applications.launch({7, u"org.chromium"_s, u"Browser"_s}, u"Chat"_s)->element();
    std::unique_ptr<SuggestionPanelController> controller = std::make_unique<SuggestionPanelController>(
        cards.maker(), SuggestionPanelController::Services{desktop.eventTaps, desktop.mainQueue, desktop.panelWindows,
                                                           desktop.screens});
    QList<int> accepted;
    int dismissed = 0;
};

TEST_F(SuggestionPanel, RisesIntoPlaceOnceAndThenChangesWhereItStands) {
    show({card(std::nullopt)});
    EXPECT_EQ(desktop.panelWindows.frame, (Rect{200, 350, 500, 120}));
    EXPECT_EQ(desktop.panelWindows.animations, 1);
    EXPECT_TRUE(controller->targetElement() == element);

    cards.height = 700;
    show({card(u"a"_s), card(std::nullopt)});
    EXPECT_EQ(desktop.panelWindows.frame, (Rect{200, 8, 500, 700})) << "taller than there is room above";
    EXPECT_EQ(desktop.panelWindows.animations, 1);
    EXPECT_EQ(desktop.panelWindows.raised, 2);
    EXPECT_THAT(desktop.log(), ElementsAre(u"panel visible (1 cards)"_s));

    controller->hide();
    EXPECT_FALSE(controller->isVisible());
    EXPECT_FALSE(controller->targetElement());
    show({card(u"b"_s)});
    EXPECT_EQ(desktop.panelWindows.animations, 2);
}

TEST_F(SuggestionPanel, IsAsWideAsItsFieldWithinLimitsAndFollowsIt) {
    for (const auto &[fieldWidth, width] : {std::pair{200.0, 360.0}, {900.0, 620.0}, {500.0, 500.0}}) {
        show({card(u"a"_s)}, {200, 560, fieldWidth, 40});
        EXPECT_EQ(cards.width, width);
    }
    const int renders = cards.renders;
    controller->reposition({300, 460, 500, 40});
    EXPECT_EQ(desktop.panelWindows.frame.origin(), (platform::Point{300, 450}));
    EXPECT_EQ(cards.renders, renders);
}

TEST_F(SuggestionPanel, ChangesOneCardByItsIndex) {
    controller->updateCard(0, u"too early"_s);
    show({card(std::nullopt), card(std::nullopt)});
    EXPECT_EQ(controller->firstCompleteIndex(), std::nullopt);
    controller->updateCard(0, u"Hel"_s);
    controller->finishCard(1, u"Hello"_s, u"1.2s"_s);
    EXPECT_EQ(controller->firstCompleteIndex(), 1);
    controller->finishCard(0, u"Hello there"_s, u"2.0s"_s);
    controller->updateCard(0, u"late"_s);
    controller->failCard(1, u"Couldn't reach it"_s);
    controller->finishCard(2, u"x"_s, std::nullopt);
    EXPECT_FALSE(controller->isCardAcceptable(2));
    EXPECT_THAT(cards.shown, ElementsAre(SuggestionCardData{label, u"Hello there"_s, true, u"2.0s"_s, false},
                                         SuggestionCardData{label, u"Couldn't reach it"_s, false, u"1.2s"_s, true}));
    EXPECT_EQ(controller->firstCompleteIndex(), 0);
    controller->finishCard(0, QString(), u"2.0s"_s);
    EXPECT_FALSE(controller->isCardAcceptable(0)) << "an empty text";
    EXPECT_EQ(controller->firstCompleteIndex(), std::nullopt);
}

TEST_F(SuggestionPanel, DecidesWhichKeysItTakes) {
    EXPECT_EQ(press(keyCode::escape), TapVerdict::pass) << "nothing is shown";
    show({card(u"Hel"_s), card(u"Hello"_s)});
    EXPECT_EQ(press(keyCode::tab), TapVerdict::pass) << "nothing to accept yet";
    controller->finishCard(1, u"Hello"_s, u"1.2s"_s);
    for (const auto flag : {eventFlag::shift, eventFlag::control, eventFlag::option, eventFlag::command}) {
        EXPECT_EQ(press(keyCode::tab, flag), TapVerdict::pass);
        EXPECT_EQ(press(keyCode::escape, flag), TapVerdict::pass);
    }
    EXPECT_EQ(press(keyCode::v), TapVerdict::pass);
    EXPECT_EQ(press(keyCode::tab, 0x10000), TapVerdict::swallow) << "Caps Lock does not matter";
    controller->finishCard(0, u"Hello!"_s, u"1.3s"_s);
    EXPECT_EQ(press(keyCode::escape), TapVerdict::swallow);
    EXPECT_TRUE(accepted.isEmpty()) << "acted on only after the key is done with";
    desktop.advance(0);
    EXPECT_THAT(accepted, ElementsAre(1)) << "the card that was first when the key went down";
    EXPECT_EQ(dismissed, 1);
    controller->hide();
    EXPECT_FALSE(desktop.eventTaps.isArmed());
}

TEST_F(SuggestionPanel, TriesForTheKeysAtEachShow) {
    desktop.eventTaps.refusesCreation = true;
    show({card(u"a"_s)});
    desktop.eventTaps.refusesCreation = false;
    desktop.eventTaps.refusesArming = true;
    show({card(u"a"_s)});
    desktop.eventTaps.refusesArming = false;
    show({card(u"a"_s)});
    desktop.eventTaps.disarm();
    EXPECT_TRUE(desktop.eventTaps.isArmed());
    desktop.eventTaps.refusesArming = true;
    desktop.eventTaps.disarm();
    desktop.advance(0);
    EXPECT_THAT(desktop.log(), ElementsAre(u"panel visible (1 cards)"_s, tapFailed, tapFailed, tapFailed));
    desktop.eventTaps.refusesArming = false;
    show({card(u"a"_s)});
    controller->hide();
    desktop.eventTaps.disarm();
    EXPECT_FALSE(desktop.eventTaps.isArmed()) << "not while nothing is shown";
}

TEST_F(SuggestionPanel, PassesClicksOnUntilItIsGone) {
    show({card(u"a"_s, true), card(u"b"_s, true)});
    cards.clickAccept(1);
    cards.clickDismiss();
    EXPECT_THAT(accepted, ElementsAre(1));
    EXPECT_EQ(dismissed, 1);
    (void)press(keyCode::tab);
    controller.reset();
    desktop.advance(0);
    cards.clickAccept(0);
    cards.clickDismiss();
    EXPECT_THAT(accepted, ElementsAre(1));
    EXPECT_EQ(dismissed, 1);
}

const Screen primary{{0, 0, 1440, 900}, {0, 60, 1440, 815}};
const Screen right{{1440, -180, 1920, 1080}, {1440, -180, 1920, 1050}};
const std::vector<Screen> twoScreens{primary, right};

struct Placement {
    const char *name;
    Rect field;
    Size panel;
    Point expected;
    std::vector<Screen> screens = twoScreens;
    std::optional<Screen> mainScreen = primary;
};

TEST(SuggestionPanelPlacement, StaysBesideTheFieldAndInsideTheVisibleFrame) {
    const Size panel{420, 150};
    const Placement cases[] = {
        {"above, left edges aligned", {300, 200, 500, 40}, panel, {300, 250}},
        {"just fits below the top margin", {300, 667, 500, 40}, panel, {300, 717}},
        {"a point too high goes below", {300, 668, 500, 40}, panel, {300, 508}},
        {"no room below either: held above the bottom", {300, 200, 500, 640}, panel, {300, 68}},
        {"right edge", {1300, 200, 120, 40}, panel, {1012, 250}},
        {"left edge", {-90, 200, 500, 40}, panel, {8, 250}},
        {"wider than the screen", {300, 200, 500, 40}, {1500, 150}, {8, 250}},
        {"second screen", {3200, -100, 100, 40}, panel, {2932, -50}},
        {"on no screen: the main one", {-5000, 200, 500, 40}, panel, {1448, 250}, twoScreens, right},
        {"no screen at all", {300, 200, 500, 40}, panel, {8, 40}, {}, std::nullopt},
    };
    for (const Placement &c : cases) {
        const Point origin = panelOrigin(c.field, c.panel, c.screens, c.mainScreen);
        EXPECT_EQ(origin, c.expected) << c.name << ": " << origin.x << ", " << origin.y;
    }
}

TEST(SuggestionPanelPlacement, AnswersWithNumbersWhateverTheFieldReports) {
    const double odd[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity(), 1e300, -2147483648.0};
    for (const double value : odd) {
        const Point origin = panelOrigin({value, value, value, value}, {420, 150}, twoScreens, primary);
        EXPECT_TRUE(origin.x >= 8 && origin.x <= 3360) << value;
        EXPECT_TRUE(std::isfinite(origin.y) || value > 0) << value;
    }
}

} // namespace
} // namespace quillory::test
