// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Linux/XClient.h"
#include "Platform/Linux/X11/Panel/QtPanelWindow.h"
#include "Quillory/UI/Card/CardButtons.h"
#include "Quillory/UI/Card/SuggestionStackView.h"

#include <QApplication>
#include <QPlainTextEdit>
#include <QScreen>

#include <gmock/gmock.h>

namespace quillory::test {
namespace {

using namespace Qt::StringLiterals;
using platform::Rect;

class PanelWindow : public testing::Test {
  protected:
    void SetUp() override {
        connection->watch();
        other.setGeometry(100, 150, 800, 600);
        other.setPlaceholderText(u"Type a message"_s);
        other.show();
        ASSERT_TRUE(spinUntil([&] { return other.isActiveWindow() && other.hasFocus(); }));
        size = host.setRootView(
            {{u"Suggested rewrite"_s, u"Hello, could you please send me the price list?"_s, true, u"1.2s"_s, false},
             {u"Option 2"_s, std::nullopt, false, std::nullopt, false}},
            420, [this](int index) { accepted.append(index); }, [] {});
        panel.setContentView(host.view());
        panel.setContentSize(size);
        panel.setFrameOrigin({200, 450});
    }
    [[nodiscard]] bool isOnScreen() {
        const auto window = static_cast<xcb_window_t>(panel.window().winId());
        const auto question = xcb_get_window_attributes(connection->get(), window);
        return connection->reply(xcb_get_window_attributes_reply, question)->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    [[nodiscard]] xcb_window_t focused() {
        return connection->reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection->get()))->focus;
    }
    static QRgb pixel(QPoint place) {
        return QGuiApplication::primaryScreen()->grabWindow(0, place.x(), place.y(), 1, 1).toImage().pixel(0, 0);
    }
    /// Where the panel's content has its top left corner, in Qt's coordinates.
    [[nodiscard]] QPoint topLeft() const { return {200, int(900 - 450 - size.height)}; }
    static void clickAt(QPoint place) {
        run({"xdotool", "mousemove", std::to_string(place.x()), std::to_string(place.y()), "click", "1"});
    }
    QPoint acceptButton() {
        for (QWidget *widget : panel.window().findChildren<QWidget *>()) {
            if (dynamic_cast<ui::AcceptButton *>(widget) != nullptr && widget->isVisible()) {
                return widget->mapToGlobal(widget->rect().center());
            }
        }
        return {};
    }

    std::unique_ptr<platform::desktop::X11Connection> connection = platform::desktop::X11Connection::open();
    platform::desktop::X11Screens screens{*connection};
    QPlainTextEdit other;
    ui::SuggestionStackView host;
    platform::Size size;
    QList<int> accepted;
    platform::desktop::QtPanelWindow panel{screens};
};

TEST_F(PanelWindow, ShowsWithoutTakingTheFocusAndStandsWhereItWasPut) {
    const xcb_window_t before = focused();
    panel.orderFrontRegardless();
    ASSERT_TRUE(spinUntil([&] { return isOnScreen(); }));
    EXPECT_EQ(panel.frame(), (Rect{200, 450, 420, size.height}));
    EXPECT_EQ(static_cast<QWidget *>(host.view())->mapToGlobal(QPoint()), topLeft());
    EXPECT_TRUE(other.hasFocus());
    EXPECT_EQ(focused(), before);
    clickAt(acceptButton());
    EXPECT_TRUE(spinUntil([&] { return accepted == QList<int>{0}; }));
    EXPECT_EQ(focused(), before);
    EXPECT_TRUE(other.isActiveWindow());
    // Without a compositor the corners are cut out: what lies behind shows, never black.
    EXPECT_EQ(pixel(topLeft()), other.palette().color(QPalette::Base).rgb());
    panel.orderOut();
    EXPECT_FALSE(panel.isVisible());
    EXPECT_TRUE(spinUntil([&] { return !isOnScreen(); }));
}

TEST_F(PanelWindow, FadesInWithAShadowThatClicksFallThrough) {
    const auto compositor = [] { return ChildProcess({"picom", "--backend", "xrender", "--config", "/dev/null"}); };
    ChildProcess first = compositor();
    const xcb_window_t before = focused();
    panel.setFrameOrigin({200, 442});
    panel.setAlpha(0);
    panel.orderFrontRegardless();
    panel.animate({200, 450}, 1, std::chrono::milliseconds(180));
    EXPECT_TRUE(spinUntil([&] { return panel.frame().y == 450 && panel.window().windowOpacity() == 1; }));
    EXPECT_TRUE(spinUntil([&] { return isOnScreen(); }));
    const QRgb desktop = pixel({800, 700});
    EXPECT_TRUE(spinUntil([&] { return pixel(topLeft() + QPoint(210, 12)) != desktop; }));
    EXPECT_TRUE(spinUntil([&] { return qGray(pixel(topLeft() + QPoint(-4, 60))) < qGray(desktop); }));
    clickAt(topLeft() + QPoint(int(size.width) / 2, int(size.height) + 8));
    EXPECT_EQ(focused(), before);
    clickAt(acceptButton());
    EXPECT_TRUE(spinUntil([&] { return accepted == QList<int>{0}; }));
    EXPECT_EQ(focused(), before);

    // The compositor ends and another one starts while the cards are up.
    first.end();
    EXPECT_TRUE(spinUntil([&] { return panel.window().geometry().topLeft() == topLeft() - QPoint(1, 1); }));
    EXPECT_TRUE(spinUntil([&] { return pixel(topLeft() + QPoint(-4, 60)) == desktop; }));
    const ChildProcess second = compositor();
    EXPECT_TRUE(spinUntil([&] { return qGray(pixel(topLeft() + QPoint(-4, 60))) < qGray(desktop); }));
}

} // namespace
} // namespace quillory::test
