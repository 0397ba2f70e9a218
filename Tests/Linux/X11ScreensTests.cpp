// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Linux/XClient.h"
#include "Platform/Linux/X11/X11Screens.h"

#include <QGuiApplication>
#include <QWidget>

#include <gmock/gmock.h>

using namespace platform;
using namespace platform::desktop;

namespace quillory::test {
namespace {

/// Everything is told in points; the tests are given pixels, so they hold at any scale of the toolkit.
class X11ScreensTest : public testing::Test {
  protected:
    void SetUp() override { connection->watch(); }

    [[nodiscard]] Rect points(double x, double y, double width, double height) const {
        return {x / scale, y / scale, width / scale, height / scale};
    }
    /// A panel of the desktop, which keeps the other windows off an edge.
    xcb_window_t openPanel(const QRect &pixels, const std::vector<std::uint32_t> &strut) {
        const xcb_window_t panel = client.open(pixels);
        client.setNumbers(panel, "_NET_WM_STRUT_PARTIAL", strut);
        return panel;
    }

    std::unique_ptr<X11Connection> connection = X11Connection::open();
    X11Screens screens{*connection};
    XClient client;
    double scale = qGuiApp->devicePixelRatio();
};

TEST_F(X11ScreensTest, LeavesThePanelsOfTheDesktopOut) {
    EXPECT_THAT(screens.screens(), testing::ElementsAre(Screen{points(0, 0, 1280, 900), points(0, 0, 1280, 900)}));
    openPanel({0, 0, 10, 10}, {0xFFFFFFFF, 0x80000000, 0x7FFFFFFF, 0x80000001, 0, 0, 0, 0, 0, 0, 0, 1279}); // nonsense
    const xcb_window_t panel = openPanel({0, 860, 1280, 40}, {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 1279});
    const Rect above = points(0, 40, 1280, 860);
    EXPECT_TRUE(spinUntil([&] { return screens.screens().front().visibleFrame == above; }));
    EXPECT_EQ(screens.screens().front().frame, points(0, 0, 1280, 900));
    xcb_destroy_window(client.connection().get(), panel);
    client.connection().flush();
    EXPECT_TRUE(spinUntil([&] { return screens.screens().front().visibleFrame == points(0, 0, 1280, 900); }));
}

TEST_F(X11ScreensTest, CountsFromThePrimaryMonitor) {
    ASSERT_EQ(run({"xrandr", "--setmonitor", "left", "500/100x900/200+0+0", "screen"}), 0);
    ASSERT_EQ(run({"xrandr", "--setmonitor", "*right", "780/150x600/150+500+100", "none"}), 0);
    ASSERT_TRUE(spinUntil([&] { return screens.screens().size() == 2; }));
    if (scale == 1) { // where corners stand as they do in pixels
        const std::vector<Screen> found = screens.screens();
        EXPECT_EQ(found[0].frame, (Rect{0, 0, 780, 600}));
        EXPECT_EQ(found[1].frame, (Rect{-500, -200, 500, 900}));
        EXPECT_EQ(screens.accessibilityRect({510, 100, 20, 30}), (Rect{10, 0, 20, 30}));
        EXPECT_EQ(screens.accessibilityRect({0, 0, 20, 30}), (Rect{-500, -100, 20, 30}));
        openPanel({510, 650, 100, 30}, {0, 0, 0, 220, 0, 0, 0, 0, 0, 0, 500, 1279}); // 20 above the right one's bottom
        EXPECT_TRUE(spinUntil([&] { return screens.screens()[0].visibleFrame == Rect{0, 20, 780, 580}; }));
        EXPECT_EQ(screens.screens()[1].visibleFrame, screens.screens()[1].frame);
    }
    EXPECT_EQ(screens.mainScreen(), screens.screens()[0]);
    client.open({20, 400, 200, 100});
    EXPECT_TRUE(spinUntil([&] { return screens.mainScreen() == screens.screens()[1]; }));
    client.open({700, 400, 200, 100});
    EXPECT_TRUE(spinUntil([&] { return screens.mainScreen() == screens.screens()[0]; }));
}

TEST_F(X11ScreensTest, AgreesWithTheToolkitOnWhereThingsAre) {
    QWidget panel(nullptr, Qt::X11BypassWindowManagerHint | Qt::FramelessWindowHint);
    const Rect place{120, 200, 100, 50};
    panel.resize(100, 50);
    panel.move(screens.qtPosition(place));
    panel.show();
    EXPECT_EQ(screens.screenRect(panel.geometry()), place);
    const auto window = static_cast<xcb_window_t>(panel.winId());
    const Rect expected{place.x, screens.screens().front().frame.maxY() - place.maxY(), 100, 50};
    EXPECT_TRUE(spinUntil([&] {
        const auto g = connection->reply(xcb_get_geometry_reply, xcb_get_geometry(connection->get(), window));
        const Rect pixels{double(g->x), double(g->y), double(g->width), double(g->height)};
        return screens.accessibilityRect(pixels) == expected;
    }));
    EXPECT_EQ(screens.scaleAt({5, 5}), scale);
}

} // namespace
} // namespace quillory::test
