// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/CardButtons.h"
#include "Quillory/UI/Card/CardText.h"
#include "Quillory/UI/Card/CopyMenu.h"
#include "Quillory/UI/Card/KeyHints.h"
#include "Quillory/UI/Card/RefiningIndicator.h"
#include "Quillory/UI/Card/SuggestionStackView.h"
#include "Quillory/UI/Look.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QWheelEvent>

#include <gmock/gmock.h>

namespace quillory::test {
namespace {

using namespace quillory::ui;
using namespace Qt::StringLiterals;

const QString shortText = u"Hello, could you please send me the price list?"_s;
const QString longText =
    u"Thank you for reaching out, Fatima. The blue dress in size M is in stock and costs BD 24.500, delivery "
    u"included.\n"
    u"We deliver across Riffa, Isa Town and Manama between 10 AM and 8 PM, usually on the next working day.\n\n"
    u"If you send me your address and a convenient time, I will arrange it right away 😊"_s;
const QString arabicText = u"السعر 24.500 دينار مع التوصيل إلى Riffa غداً."_s;
const SuggestionCardData waiting{u"Suggested rewrite"_s, std::nullopt, false, std::nullopt, false};
const SuggestionCardData failed{u"Suggested rewrite"_s, std::nullopt, false, std::nullopt, true};

SuggestionCardData streaming(const QString &text) {
    return {u"Suggested rewrite"_s, text, false, std::nullopt, false};
}
SuggestionCardData finished(const QString &text) {
    return {u"Suggested rewrite"_s, text, true, u"1.2s"_s, false};
}

class CardLook : public testing::Test {
  protected:
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

    void expectAllInside() {
        for (const QWidget *widget : visible<QWidget>()) {
            EXPECT_TRUE(widget->parentWidget()->rect().contains(widget->geometry()));
        }
    }

    SuggestionStackView host;
    QList<int> accepted;
    int dismissed = 0;
};

TEST_F(CardLook, ShowsWhatItsDataSay) {
    const struct {
        const char *name;
        double width;
        SuggestionCards cards;
        int indicators;
        int hints;
        QList<bool> enabled;
    } looks[] = {
        {"waiting", 420, {waiting}, 1, 0, {}},
        {"empty", 420, {streaming(QString())}, 0, 1, {false}},
        {"finished", 420, {finished(shortText)}, 0, 1, {true}},
        {"failed", 420, {failed}, 0, 0, {}},
        {"half-failed", 420, {failed, finished(shortText)}, 0, 0, {true}},
        {"two", 620, {finished(longText), waiting}, 1, 1, {true}},
        {"arabic", 420, {finished(arabicText)}, 0, 1, {true}},
        {"word", 360, {finished(QString(200, u'w'))}, 0, 1, {true}},
    };
    for (const auto &look : looks) {
        SCOPED_TRACE(look.name);
        EXPECT_EQ(show(look.cards, look.width).width, look.width);
        EXPECT_EQ(visible<RefiningIndicator>().size(), look.indicators);
        EXPECT_EQ(visible<KeyHints>().size(), look.hints);
        QList<bool> enabled;
        for (const AcceptButton *button : visible<AcceptButton>()) {
            enabled.append(button->isEnabled());
        }
        EXPECT_EQ(enabled, look.enabled);
        EXPECT_EQ(visible<HoverIconButton>().size(), look.cards.size());
        expectAllInside();
        for (CardText *text : visible<CardText>()) {
            EXPECT_EQ(text->height(), text->heightForTextWidth(text->width() - CardText::scrollMargin)) << "is clipped";
        }
    }
}

TEST_F(CardLook, ReportsClicksOnItsButtons) {
    show({streaming(u"Hel"_s), finished(shortText)});
    for (AcceptButton *button : visible<AcceptButton>()) {
        QTest::mouseClick(button, Qt::LeftButton);
    }
    EXPECT_EQ(accepted, QList<int>{1}) << "the first card streams still";
    QTest::mouseClick(visible<HoverIconButton>().constLast(), Qt::LeftButton);
    EXPECT_EQ(dismissed, 1);
}

TEST_F(CardLook, ChangesInPlaceAndKeepsWhatTheUserDoes) {
    show({streaming(u"Hello, could you"_s)});
    CardText *text = visible<CardText>().constFirst();
    const AcceptButton *button = visible<AcceptButton>().constFirst();
    QTest::mousePress(text, Qt::LeftButton, {}, {1, 8});
    QTest::mouseMove(text, {60, 8});
    const QString selected = text->selectedText();
    ASSERT_TRUE(selected.startsWith(u"Hello"_s));
    show({streaming(shortText)});
    EXPECT_EQ(text->selectedText(), selected) << "while the mouse still selects";
    QTest::mouseRelease(text, Qt::LeftButton, {}, {60, 8});
    show({finished(shortText)});
    EXPECT_EQ(QGuiApplication::clipboard()->text(QClipboard::Selection), selected);
    EXPECT_EQ(visible<CardText>().constFirst(), text);
    EXPECT_EQ(visible<AcceptButton>().constFirst(), button);
    EXPECT_EQ(text->selectedText(), selected);
    show({finished(u"Hell no"_s)});
    EXPECT_EQ(text->selectedText(), QString()) << "that text is gone";
    QTest::mouseDClick(text, Qt::LeftButton, {}, {8, 8});
    EXPECT_EQ(text->selectedText(), u"Hell"_s);
}

TEST_F(CardLook, CopiesWithoutAMenuThatWouldTakeTheKeyboard) {
    const QString odd = u"<b>5 &lt; 6</b>\r\n\u202Ereversed\n\u2067مرحبا\tend 😊"_s;
    show({finished(odd)});
    CardText *text = visible<CardText>().constFirst();
    QTest::mouseClick(text, Qt::RightButton, {}, {5, 5});
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    CopyMenu *menu = visible<CopyMenu>().value(0);
    ASSERT_NE(menu, nullptr);
    QTest::mouseClick(menu, Qt::LeftButton);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), odd);
    EXPECT_FALSE(menu->isVisible());
    QTest::mouseClick(text, Qt::RightButton, {}, {5, 5});
    EXPECT_TRUE(menu->isVisible());
    QTest::mouseClick(visible<AcceptButton>().constFirst(), Qt::LeftButton);
    EXPECT_FALSE(menu->isVisible()) << "a click elsewhere ends it";
}

TEST_F(CardLook, KeepsToTheScreenWhateverTheTextIs) {
    const QString endless = QString(longText + u'\n').repeated(40);
    for (const SuggestionCards &cards : {SuggestionCards{finished(endless)}, {finished(endless), finished(endless)}}) {
        const platform::Size size = show(cards);
        EXPECT_LE(size.height, 900 - 16);
        expectAllInside();
        CardText *text = visible<CardText>().constFirst();
        QWheelEvent wheel({5, 5}, text->mapToGlobal(QPointF(5, 5)), {}, {0, -240}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(text, &wheel);
        EXPECT_GT(text->scrollOffset(), 0);
    }
    const double oneLine = show({finished(u"x"_s)}).height;
    EXPECT_LE(show({finished(u'x' + QString(2000, QChar(0x0316)))}).height, 2 * oneLine) << "a flood of marks";
}

TEST_F(CardLook, KeepsControlCharactersWithinTheirParagraph) {
    for (const QString &first : {u"abc"_s, u"\u202E\u2066abc"_s}) {
        show({finished(first + u"\nplain text"_s)});
        CardText *text = visible<CardText>().constFirst();
        QTest::mouseDClick(text, Qt::LeftButton, {}, {8, text->height() - 6});
        EXPECT_EQ(text->selectedText(), u"plain"_s);
    }
}

TEST_F(CardLook, GrowsLikeATextSetAtOnce) {
    const QString full = longText + u'\n' + arabicText + u"\r\n12 \U0001F44B\U0001F3FD\n\nend"_s;
    const auto look = [](CardText &text, const QString &shown) {
        text.setText(shown);
        text.resize(300, text.heightForTextWidth(300));
        return text.grab().toImage();
    };
    CardText growing(nullptr);
    growing.setStyle(systemFont(13.5), 3.5, true);
    for (qsizetype length = 0; length <= full.size(); ++length) {
        CardText whole(nullptr);
        whole.setStyle(systemFont(13.5), 3.5, true);
        ASSERT_EQ(look(growing, full.left(length)), look(whole, full.left(length))) << length;
    }
}

TEST_F(CardLook, IsNamedForAssistiveTools) {
    show({finished(shortText)});
    const auto describe = [](QWidget *widget) {
        const QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(widget);
        return std::pair(interface->role(), interface->text(QAccessible::Name));
    };
    EXPECT_EQ(describe(visible<AcceptButton>().constFirst()), std::pair(QAccessible::Button, u"Use suggestion"_s));
    EXPECT_EQ(describe(visible<HoverIconButton>().constFirst()), std::pair(QAccessible::Button, u"Dismiss"_s));
    EXPECT_EQ(describe(visible<CardText>().constFirst()), std::pair(QAccessible::StaticText, shortText));
    EXPECT_EQ(describe(visible<SuggestionCard>().constFirst()),
              std::pair(QAccessible::Grouping, u"Suggested rewrite 1.2s"_s));
}

} // namespace
} // namespace quillory::test
