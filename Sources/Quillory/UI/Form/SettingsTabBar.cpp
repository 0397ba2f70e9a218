// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Form/SettingsTabBar.h"

#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Look.h"
#include "Quillory/UI/Symbols.h"

#include <QEvent>
#include <QPainter>

namespace quillory::ui {

namespace {
constexpr double tabSymbolPoints = 15;
constexpr double leastTabWidth = 76;
constexpr int tabSidePadding = 12;
constexpr int tabTopPadding = 5;
constexpr int tabGap = 2;
constexpr double tabRadius = 7;
} // namespace

SettingsTabBar::SettingsTabBar() {
    setFont(formFont(captionPoints));
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
}

void SettingsTabBar::add(const QString &symbol, const QString &label) {
    setTabData(addTab(label), symbol);
}

QSize SettingsTabBar::tabSizeHint(int index) const {
    const QFontMetrics metrics(font());
    const int width = std::max(scaled(leastTabWidth),
                               metrics.size(Qt::TextShowMnemonic, tabText(index)).width() + 2 * tabSidePadding);
    const int symbol = qRound(symbolSide(tabSymbolPoints * textScale()));
    return {width, tabTopPadding + symbol + tabGap + metrics.height() + tabTopPadding};
}

QSize SettingsTabBar::sizeHint() const {
    QSize size;
    for (int i = 0; i < count(); ++i) {
        size = {size.width() + tabSizeHint(i).width(), tabSizeHint(i).height()};
    }
    return size;
}

void SettingsTabBar::changeEvent(QEvent *event) {
    QTabBar::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(formFont(captionPoints));
    }
}

void SettingsTabBar::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < count(); ++i) {
        paintTab(painter, i);
    }
}

void SettingsTabBar::paintTab(QPainter &painter, int index) const {
    const QRectF tab = QRectF(tabRect(index)).adjusted(1.5, 1.5, -1.5, -1.5);
    const bool isCurrent = index == currentIndex();
    const bool isHovered = tab.contains(mapFromGlobal(QCursor::pos())) && underMouse();
    if (isCurrent || isHovered) {
        painter.fillPath(continuousRoundedRect(tab, tabRadius), faded(lookOf(*this).primary, isCurrent ? 0.09 : 0.045));
    }
    if (isCurrent && showsFocus(*this)) {
        painter.setPen(QPen(faded(palette().color(QPalette::Highlight), 0.7), 2));
        painter.drawPath(continuousRoundedRect(tab, tabRadius));
    }
    const QColor color = isCurrent ? tintColor(*this, Tint::accent) : lookOf(*this).secondary;
    const double side = symbolSide(tabSymbolPoints * textScale());
    drawSymbol(painter, {std::round(tab.center().x() - side / 2), double(tabTopPadding), side, side},
               tabData(index).toString(), color);
    painter.setPen(color);
    painter.drawText(tab.adjusted(0, 0, 0, -tabTopPadding + 1), labelFlags(*this, Qt::AlignHCenter | Qt::AlignBottom),
                     tabText(index));
}

} // namespace quillory::ui
