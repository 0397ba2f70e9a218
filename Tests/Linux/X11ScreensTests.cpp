// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Linux/XClient.h"
#include "Platform/Linux/X11/Panel/QtPanelWindow.h"
#include "RealDesktop/RealDesktop.h"
#include "RealDesktop/StartedAnew.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <gmock/gmock.h>

using namespace platform;
using namespace platform::desktop;

namespace quillory::test {
namespace {

/// Two monitors, the right one the primary one and lower than the left one.
void setTwoMonitors() {
    ASSERT_EQ(run({"xrandr", "--setmonitor", "left", "500/100x900/200+0+0", "screen"}), 0);
    ASSERT_EQ(run({"xrandr", "--setmonitor", "*right", "780/150x600/150+500+100", "none"}), 0);
}

class X11ScreensTest : public testing::Test {
  protected:
    void SetUp() override { connection->watch(); }

    /// A panel of the desktop, which keeps the other windows off an edge.
    xcb_window_t openPanel(const QRect &pixels, const std::vector<std::uint32_t> &strut) {
        const xcb_window_t panel = client.open(pixels);
        client.setNumbers(panel, "_NET_WM_STRUT_PARTIAL", strut);
        return panel;
    }

    std::unique_ptr<X11Connection> connection = X11Connection::open();
    X11Screens screens{*connection};
    XClient client;
};

TEST_F(X11ScreensTest, LeavesThePanelsOfTheDesktopOut) {
    const Rect whole{0, 0, 1280, 900};
    EXPECT_THAT(screens.screens(), testing::ElementsAre(Screen{whole, whole}));
    openPanel({0, 0, 10, 10}, {0xFFFFFFFF, 0x80000000, 0x7FFFFFFF, 0x80000001, 0, 0, 0, 0, 0, 0, 0, 1279}); // nonsense
    const xcb_window_t panel = openPanel({0, 860, 1280, 40}, {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 1279});
    EXPECT_TRUE(spinUntil([&] { return screens.screens().front().visibleFrame == Rect{0, 40, 1280, 860}; }));
    EXPECT_EQ(screens.screens().front().frame, whole);
    xcb_destroy_window(client.connection().get(), panel);
    client.connection().flush();
    EXPECT_TRUE(spinUntil([&] { return screens.screens().front().visibleFrame == whole; }));
}

TEST_F(X11ScreensTest, CountsFromThePrimaryMonitor) {
    ASSERT_NO_FATAL_FAILURE(setTwoMonitors());
    ASSERT_TRUE(spinUntil([&] { return screens.screens().size() == 2; }));
    const std::vector<Screen> found = screens.screens();
    EXPECT_EQ(found[0].frame, (Rect{0, 0, 780, 600}));
    EXPECT_EQ(found[1].frame, (Rect{-500, -200, 500, 900}));
    EXPECT_EQ(screens.accessibilityRect({510, 100, 20, 30}), (Rect{10, 0, 20, 30}));
    EXPECT_EQ(screens.accessibilityRect({0, 0, 20, 30}), (Rect{-500, -100, 20, 30}));
    openPanel({510, 650, 100, 30}, {0, 0, 0, 220, 0, 0, 0, 0, 0, 0, 500, 1279}); // 20 above the right one's bottom
    EXPECT_TRUE(spinUntil([&] { return screens.screens()[0].visibleFrame == Rect{0, 20, 780, 580}; }));
    EXPECT_EQ(screens.screens()[1].visibleFrame, screens.screens()[1].frame);
    EXPECT_EQ(screens.mainScreen(), screens.screens()[0]);
    client.open({20, 400, 200, 100});
    EXPECT_TRUE(spinUntil([&] { return screens.mainScreen() == screens.screens()[1]; }));
    client.open({700, 400, 200, 100});
    EXPECT_TRUE(spinUntil([&] { return screens.mainScreen() == screens.screens()[0]; }));
}

/// Where a field's pixels are for the rest of the program, and where a card that is placed by them comes up.
void expectCardAbove(QtPanelWindow &panel, X11Screens &screens, const QRect &field, double scale) {
    const Rect told = screens.accessibilityRect({double(field.x()), double(field.y()), double(field.width()), 40});
    EXPECT_NEAR(told.width, field.width() / scale, 0.01);
    panel.setContentSize({200, 60});
    panel.setFrameOrigin({told.x, screens.screens().front().frame.maxY() - told.y + 10});
    panel.orderFrontRegardless();
    const QRect card(field.x(), field.y() - qRound(70 * scale), qRound(200 * scale), qRound(60 * scale));
    X11Connection &connection = screens.connection();
    const auto window = static_cast<xcb_window_t>(panel.window().winId());
    const auto shown = [&] {
        const auto size = connection.reply(xcb_get_geometry_reply, xcb_get_geometry(connection.get(), window));
        const auto asked = xcb_translate_coordinates(connection.get(), window, connection.root(), 0, 0);
        const auto place = connection.reply(xcb_translate_coordinates_reply, asked);
        const int outline = qRound(scale);
        return QRect(place->dst_x, place->dst_y, size->width, size->height)
            .adjusted(outline, outline, -outline, -outline);
    };
    const auto isNear = [&](const QRect &rect) { // whole points are pixels apart
        constexpr QMargins apart(2, 2, 2, 2);
        return (rect + apart).contains(card) && (card + apart).contains(rect);
    };
    EXPECT_TRUE(spinUntil([&] { return isNear(shown()); }, 3000))
        << shown().x() << ' ' << shown().y() << ' ' << shown().width() << ' ' << shown().height() << " for " << card.x()
        << ' ' << card.y() << ' ' << card.width() << ' ' << card.height();
}

TEST(X11ScreensAtScale, CardsStandAboveTheirFieldsOnEveryMonitor) {
    const QRect left(0, 0, 500, 900);
    const QRect right(500, 100, 780, 600);
    if (!isStartedAnew()) {
        ASSERT_NO_FATAL_FAILURE(setTwoMonitors());
        for (const char *scales : {"left=1.25;right=2", "left=2;right=1.25", "left=1;right=1.25", "left=2;right=2"}) {
            qputenv("QT_SCREEN_SCALE_FACTORS", scales);
            EXPECT_EQ(startAnew(), 0) << scales;
        }
        return;
    }
    const auto connection = X11Connection::open();
    connection->watch();
    X11Screens screens(*connection);
    ASSERT_EQ(screens.screens().size(), 2U);
    QWidget content;
    QtPanelWindow panel(screens);
    panel.setContentView(&content);
    const QByteArrayList scales = qgetenv("QT_SCREEN_SCALE_FACTORS").split(';');
    for (const QPoint place : {QPoint(20, 200), QPoint(51, 401), QPoint(120, 303)}) { // from one to the other and back
        for (const auto &[monitor, scale, frame] :
             {std::tuple(left, scales[0].mid(5).toDouble(), screens.screens()[1].frame),
              {right, scales[1].mid(6).toDouble(), screens.screens()[0].frame}}) {
            SCOPED_TRACE(scale);
            EXPECT_EQ(frame.width, monitor.width() / scale);
            EXPECT_EQ(frame.height, monitor.height() / scale);
            const QScreen *const shown = QGuiApplication::screenAt(monitor.topLeft() + QPoint(1, 1));
            ASSERT_NE(shown, nullptr);
            EXPECT_EQ(shown->geometry().size(), (QSizeF(monitor.size()) / scale).toSize()) << "Qt has it otherwise";
            expectCardAbove(panel, screens, {monitor.topLeft() + place, QSize(300, 40)}, scale);
        }
    }
}

} // namespace
} // namespace quillory::test
