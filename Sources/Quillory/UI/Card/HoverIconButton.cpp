// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/HoverIconButton.h"

#include "Quillory/UI/Look.h"
#include "Quillory/UI/Symbols.h"

#include <QPainter>

#include <cmath>

namespace quillory::ui {

namespace {
constexpr double restOpacity = 0.5;
constexpr int clickMargin = 6;
} // namespace

HoverIconButton::HoverIconButton(const QString &systemName, const QString &name, QWidget *parent)
    : QAbstractButton(parent), m_systemName(systemName), m_hover(*this) {
    setAccessibleName(name);
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::PointingHandCursor);
}

int HoverIconButton::symbolExtent(double scale) {
    return static_cast<int>(symbolSide(14 * scale));
}

void HoverIconButton::setScale(double scale) {
    m_scale = scale;
    updateGeometry();
    update();
}

QSize HoverIconButton::sizeHint() const {
    const int side = symbolExtent(m_scale) + 2 * clickMargin;
    return {side, side};
}

void HoverIconButton::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    const Look &look = lookOf(*this);
    const QRectF symbol(clickMargin, clickMargin, symbolExtent(m_scale), symbolExtent(m_scale));
    if (focusPolicy() == Qt::NoFocus) {
        const double opacity = restOpacity + (1 - restOpacity) * m_hover.progress();
        drawSymbol(painter, symbol, m_systemName, faded(look.secondary, opacity));
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(continuousRoundedRect(rect(), clickMargin),
                     faded(look.primary, hasFocus() ? 0.12 : 0.08 * m_hover.progress()));
    drawSymbol(painter, symbol, m_systemName, look.secondary);
}

} // namespace quillory::ui
