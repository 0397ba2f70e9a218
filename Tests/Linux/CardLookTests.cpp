// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/X11/PanelFrame.h"
#include "Quillory/UI/AcceptButton.h"
#include "Quillory/UI/CardText.h"
#include "Quillory/UI/HoverIconButton.h"
#include "Quillory/UI/KeyCap.h"
#include "Quillory/UI/RefiningIndicator.h"
#include "Quillory/UI/SuggestionViewHost.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <gmock/gmock.h>

namespace quillory::test {
namespace {

using namespace quillory::ui;
using namespace Qt::StringLiterals;

const QString rewriteLabel = u"Suggested rewrite"_s;
const QString shortText = u"Hello, could you please send me the price list?"_s;
const QString longText =
    u"Thank you for reaching out, Fatima. The blue dress in size M is in stock and costs BD 24.500, delivery "
    u"included.\n"
    u"We deliver across Riffa, Isa Town and Manama between 10 AM and 8 PM, usually on the next working day.\n\n"
    u"If you send me your address and a convenient time, I will arrange it right away 😊"_s;
const QString arabicText =
    u"مرحباً، هل يمكنك إرسال قائمة الأسعار من فضلك؟\nالسعر 24.500 دينار مع التوصيل إلى Riffa غداً."_s;

SuggestionCardData waiting(const QString &label = rewriteLabel) {
    return {label, std::nullopt, false, std::nullopt, false};
}
SuggestionCardData streaming(const QString &text) {
    return {rewriteLabel, text, false, std::nullopt, false};
}
SuggestionCardData finished(const QString &text, const QString &label = rewriteLabel) {
    return {label, text, true, u"1.2s"_s, false};
}
SuggestionCardData failed(const std::optional<QString> &message, const QString &label = rewriteLabel) {
    return {label, message, false, std::nullopt, true};
}

class CardLook : public testing::Test {
  protected:
    void SetUp() override { m_palette = QApplication::palette(); }
    void TearDown() override { QApplication::setPalette(m_palette); }

    static void setDark(bool dark) {
        QPalette palette = QApplication::palette();
        palette.setColor(QPalette::Window, dark ? QColor(36, 36, 40) : QColor(240, 240, 240));
        palette.setColor(QPalette::Base, dark ? QColor(30, 30, 33) : QColor(Qt::white));
        QApplication::setPalette(palette);
    }

    platform::Size show(const SuggestionCards &cards, double width = 420) {
        const platform::Size size = host.setRootView(
            cards, width, [this](int index) { accepted.append(index); }, [this] { ++dismissed; });
        view().show();
        return size;
    }
    QWidget &view() { return *static_cast<QWidget *>(host.view()); }

    /// The visible views of a kind, from top to bottom.
    template <class View> QList<View *> visible() {
        QList<View *> result;
        for (QWidget *widget : view().findChildren<QWidget *>()) {
            if (auto *found = dynamic_cast<View *>(widget); found != nullptr && found->isVisible()) {
                result.append(found);
            }
        }
        return result;
    }

    void click(QWidget *target, QPoint place, Qt::MouseButton button = Qt::LeftButton) {
        send(target, QEvent::MouseButtonPress, place, button, button);
        send(target, QEvent::MouseButtonRelease, place, button, Qt::NoButton);
    }
    static void send(QWidget *target, QEvent::Type type, QPoint place, Qt::MouseButton button,
                     Qt::MouseButtons buttons) {
        QMouseEvent event(type, place, target->mapToGlobal(place), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(target, &event);
    }

    SuggestionViewHost host;
    QList<int> accepted;
    int dismissed = 0;

  private:
    QPalette m_palette;
};

/// Draws each look as it stands on a desktop with a compositor, for people to look at.
void savePicture(const QString &name, QWidget &view, bool dark) {
    const QString folder = qEnvironmentVariable("QUILLORY_PICTURES");
    if (folder.isEmpty()) {
        return;
    }
    platform::desktop::PanelFrame frame;
    frame.setComposited(true);
    const QSize size = view.size();
    frame.setContent(&view);
    frame.setContentGeometry({QPoint(60, 60), size});
    for (const int scale : {1, 2}) {
        QImage image(frame.size() * scale, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(dark ? QColor(24, 30, 36) : QColor(229, 221, 213));
        frame.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        QDir().mkpath(folder);
        image.save(folder + u"/%1-%2%3x.png"_s.arg(name, dark ? u"dark-"_s : u""_s).arg(scale));
    }
    // Giving the view back hides it.
}

struct Look {
    const char *name;
    SuggestionCards cards;
    double width = 420;
    int indicators = 0;
    int footers = 0;
    QList<bool> enabled;
    int hints = 0;
};

TEST_F(CardLook, showsWhatItsDataSay) {
    const QString word(3000, u'w');
    const QList<Look> looks{
        {"waiting", {waiting()}, 420, 1, 0, {}, 0},
        {"streaming", {streaming(u"Hello, could you please se"_s)}, 420, 0, 1, {false}, 1},
        {"empty", {streaming(QString())}, 420, 0, 1, {false}, 1},
        {"finished", {finished(shortText)}, 420, 0, 1, {true}, 1},
        {"failed", {failed(std::nullopt)}, 420, 0, 0, {}, 0},
        {"two", {finished(longText, u"Option 1"_s), waiting(u"Option 2"_s)}, 620, 1, 1, {true}, 1},
        {"both", {finished(shortText, u"Option 1"_s), finished(longText, u"Option 2"_s)}, 500, 0, 2, {true, true}, 1},
        {"half-failed",
         {failed(u"Couldn't reach Claude Haiku 4.5"_s, u"Option 1"_s), finished(shortText, u"Option 2"_s)},
         420,
         0,
         1,
         {true},
         0},
        {"arabic", {finished(arabicText)}, 420, 0, 1, {true}, 1},
        {"narrow", {finished(longText)}, 360, 0, 1, {true}, 1},
        {"word", {finished(word.left(200))}, 360, 0, 1, {true}, 1},
    };
    for (const bool dark : {false, true}) {
        setDark(dark);
        for (const Look &look : looks) {
            const platform::Size size = show(look.cards, look.width);
            EXPECT_EQ(size.width, look.width) << look.name;
            EXPECT_EQ(visible<RefiningIndicator>().size(), look.indicators) << look.name;
            EXPECT_EQ(visible<KeyHints>().size(), look.hints) << look.name;
            QList<bool> enabled;
            for (const AcceptButton *button : visible<AcceptButton>()) {
                enabled.append(button->isEnabled());
            }
            EXPECT_EQ(enabled, look.enabled) << look.name;
            EXPECT_EQ(visible<HoverIconButton>().size(), look.cards.size()) << look.name;
            savePicture(QString::fromLatin1(look.name), view(), dark);
        }
    }
}

} // namespace
} // namespace quillory::test
