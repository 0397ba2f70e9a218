// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Form/SlimScrollBar.h"

#include "Quillory/UI/Look.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>

namespace quillory::ui {

namespace {
constexpr int barExtent = 11;
constexpr double handleWidth = 6;
} // namespace

SlimScrollBar::SlimScrollBar() : QScrollBar(Qt::Vertical) {
    setAttribute(Qt::WA_Hover);
}

QSize SlimScrollBar::sizeHint() const {
    return {barExtent, QScrollBar::sizeHint().height()};
}

void SlimScrollBar::paintEvent(QPaintEvent * /*event*/) {
    if (maximum() <= minimum()) {
        return;
    }
    // Where the style has its handle, so that it can be taken where it is seen.
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRectF slider = style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    const QRectF handle((width() - handleWidth) / 2, slider.top() + 2, handleWidth, slider.height() - 4);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(faded(lookOf(*this).primary, isSliderDown() ? 0.5 : underMouse() ? 0.38 : 0.25));
    painter.drawRoundedRect(handle, handleWidth / 2, handleWidth / 2);
}

} // namespace quillory::ui
