// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Panel/SuggestionPanelController.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace quillory::test {
namespace {

using platform::Point;
using platform::Rect;
using platform::Screen;
using platform::Size;

const Screen primary{{0, 0, 1440, 900}, {0, 60, 1440, 815}};
const Screen right{{1440, -180, 1920, 1080}, {1440, -180, 1920, 1050}};
const Screen above{{0, 900, 1440, 900}, {0, 900, 1440, 900}};
const std::vector<Screen> threeScreens{primary, right, above};

struct Case {
    const char *name;
    Rect field;
    Size panel;
    Point expected;
    std::vector<Screen> screens = threeScreens;
    std::optional<Screen> mainScreen = primary;
};

TEST(SuggestionPanelPlacement, staysBesideTheFieldAndInsideTheVisibleFrame) {
    const Size panel{420, 150};
    const Case cases[] = {
        {"above, left edges aligned", {300, 200, 500, 40}, panel, {300, 250}},
        {"just fits below the top margin", {300, 667, 500, 40}, panel, {300, 717}},
        {"a point too high goes below", {300, 668, 500, 40}, panel, {300, 508}},
        {"no room below either: held above the bottom", {300, 200, 500, 640}, panel, {300, 68}},
        {"taller than the screen", {300, 400, 500, 40}, {420, 2000}, {300, 68}},
        {"right edge", {1300, 200, 120, 40}, panel, {1012, 250}},
        {"left edge", {-90, 200, 500, 40}, panel, {8, 250}},
        {"wider than the screen", {300, 200, 500, 40}, {1500, 150}, {8, 250}},
        {"second screen", {3200, -100, 100, 40}, panel, {2932, -50}},
        {"screen above the primary one", {300, 1000, 500, 40}, panel, {300, 1050}},
        {"first of overlapping screens wins", {300, 700, 500, 40}, panel, {300, 540}, {primary, {primary.frame, {}}}},
        {"on no screen: the main one", {-5000, 200, 500, 40}, panel, {1448, 250}, threeScreens, right},
        {"no screen at all", {300, 200, 500, 40}, panel, {8, 40}, {}, std::nullopt},
    };
    for (const Case &c : cases) {
        const Point origin = panelOrigin(c.field, c.panel, c.screens, c.mainScreen);
        EXPECT_EQ(origin, c.expected) << c.name << ": " << origin.x << ", " << origin.y;
    }
}

TEST(SuggestionPanelPlacement, answersWithNumbersWhateverTheFieldReports) {
    const double odd[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity(), 1e300, -2147483648.0};
    for (const double value : odd) {
        const Point origin = panelOrigin({value, value, value, value}, {420, 150}, threeScreens, primary);
        EXPECT_TRUE(origin.x >= 8 && origin.x <= 3360) << value;
        EXPECT_TRUE(std::isfinite(origin.y) || value > 0) << value;
    }
}

} // namespace
} // namespace quillory::test
