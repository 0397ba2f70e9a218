// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/X11/QtPanelWindow.h"
#include "Quillory/UI/AcceptButton.h"
#include "Quillory/UI/SuggestionViewHost.h"
#include "RealDesktop/ChildProcess.h"

#include <QApplication>
#include <QFile>
#include <QPlainTextEdit>
#include <QProcess>
#include <QScreen>

#include <gmock/gmock.h>

#include <csignal>
#include <unistd.h>

namespace quillory::test {
namespace {

using namespace Qt::StringLiterals;
using platform::Rect;

QString output(const QString &program, const QStringList &arguments) {
    QProcess process;
    process.start(program, arguments);
    while (process.state() != QProcess::NotRunning) {
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

/// Ends a program that the test's desktop has started.
void endChild(const QByteArray &name) {
    QFile children(u"/proc/self/task/%1/children"_s.arg(getpid()));
    ASSERT_TRUE(children.open(QIODevice::ReadOnly));
    for (const QByteArray &child : children.readAll().simplified().split(' ')) {
        QFile comm(u"/proc/%1/comm"_s.arg(QString::fromLatin1(child)));
        if (comm.open(QIODevice::ReadOnly) && comm.readAll().trimmed() == name) {
            kill(child.toInt(), SIGTERM);
        }
    }
}

template <class Condition> bool eventually(Condition condition) {
    return waitUntil([&] {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
        return condition();
    });
}

class PanelWindow : public testing::Test {
  protected:
    void SetUp() override {
        other.setGeometry(100, 150, 800, 600);
        other.setPlaceholderText(u"Type a message"_s);
        other.show();
        ASSERT_TRUE(eventually([&] { return other.isActiveWindow() && other.hasFocus(); }));
        size = host.setRootView(
            {{u"Suggested rewrite"_s, u"Hello, could you please send me the price list?"_s, true, u"1.2s"_s, false},
             {u"Option 2"_s, std::nullopt, false, std::nullopt, false}},
            420, [this](int index) { accepted.append(index); }, [] {});
        panel.setContentView(host.view());
        panel.setContentSize(size);
        panel.setFrameOrigin({200, 450});
    }
    void appear() {
        panel.orderFrontRegardless();
        ASSERT_TRUE(eventually([&] { return isOnScreen(); }));
    }
    [[nodiscard]] bool isOnScreen() {
        return output(u"xdotool"_s, {u"search"_s, u"--onlyvisible"_s, u"--pid"_s, QString::number(getpid())})
            .split(u'\n')
            .contains(QString::number(panel.window().winId()));
    }
    [[nodiscard]] static QString focused() { return output(u"xdotool"_s, {u"getwindowfocus"_s}); }
    static QRgb pixel(QPoint place) {
        return QGuiApplication::primaryScreen()->grabWindow(0, place.x(), place.y(), 1, 1).toImage().pixel(0, 0);
    }
    /// Where the panel's content has its top left corner, in Qt's coordinates.
    [[nodiscard]] QPoint topLeft() const { return {200, int(900 - 450 - size.height)}; }
    static void savePicture(const QString &name) {
        const QString folder = qEnvironmentVariable("QUILLORY_PICTURES");
        if (!folder.isEmpty()) {
            QGuiApplication::primaryScreen()->grabWindow(0).save(folder + u'/' + name);
        }
    }
    static void clickAt(QPoint place) {
        output(u"xdotool"_s,
               {u"mousemove"_s, QString::number(place.x()), QString::number(place.y()), u"click"_s, u"1"_s});
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
    ui::SuggestionViewHost host;
    platform::Size size;
    QList<int> accepted;
    platform::desktop::QtPanelWindow panel{screens};
};
using PanelWindowComposited = PanelWindow;

TEST_F(PanelWindow, ShowsWithoutTakingTheFocusAndStandsWhereItWasPut) {
    const QString before = focused();
    appear();
    EXPECT_EQ(panel.frame(), (Rect{200, 450, 420, size.height}));
    EXPECT_EQ(static_cast<QWidget *>(host.view())->mapToGlobal(QPoint()), topLeft());
    EXPECT_TRUE(other.hasFocus());
    EXPECT_EQ(focused(), before);
    clickAt(acceptButton());
    EXPECT_TRUE(eventually([&] { return accepted == QList<int>{0}; }));
    EXPECT_EQ(focused(), before);
    EXPECT_TRUE(other.isActiveWindow());
    savePicture(u"window-plain.png"_s);
    // Without a compositor the corners are cut out: what lies behind shows, never black.
    EXPECT_EQ(pixel(topLeft()), other.palette().color(QPalette::Base).rgb());
    panel.orderOut();
    EXPECT_FALSE(panel.isVisible());
    EXPECT_TRUE(eventually([&] { return !isOnScreen(); }));
}

TEST_F(PanelWindowComposited, FadesInWithAShadowThatClicksFallThrough) {
    const QString before = focused();
    panel.setFrameOrigin({200, 442});
    panel.setAlpha(0);
    panel.orderFrontRegardless();
    panel.animate({200, 450}, 1, std::chrono::milliseconds(180));
    EXPECT_TRUE(eventually([&] { return panel.frame().y == 450 && panel.window().windowOpacity() == 1; }));
    EXPECT_TRUE(eventually([&] { return isOnScreen(); }));
    const QRgb desktop = pixel({800, 700});
    EXPECT_TRUE(eventually([&] { return pixel(topLeft() + QPoint(210, 12)) != desktop; }));
    EXPECT_TRUE(eventually([&] { return qGray(pixel(topLeft() + QPoint(-4, 60))) < qGray(desktop); }));
    savePicture(u"window-composited.png"_s);
    clickAt(topLeft() + QPoint(int(size.width) / 2, int(size.height) + 8));
    EXPECT_EQ(focused(), before);
    clickAt(acceptButton());
    EXPECT_TRUE(eventually([&] { return accepted == QList<int>{0}; }));
    EXPECT_EQ(focused(), before);

    // The compositor ends and another one starts while the cards are up.
    endChild("picom");
    EXPECT_TRUE(eventually([&] { return panel.window().geometry().topLeft() == topLeft() - QPoint(1, 1); }));
    EXPECT_TRUE(eventually([&] { return pixel(topLeft() + QPoint(-4, 60)) == desktop; }));
    const ChildProcess compositor({"picom", "--backend", "xrender", "--config", "/dev/null"});
    EXPECT_TRUE(eventually([&] { return qGray(pixel(topLeft() + QPoint(-4, 60))) < qGray(desktop); }));
}

} // namespace
} // namespace quillory::test
