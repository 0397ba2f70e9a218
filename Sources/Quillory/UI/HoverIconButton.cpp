// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/UI/HoverIconButton.h"

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

int HoverIconButton::symbolExtent() {
    return static_cast<int>(symbolSide(14));
}

QSize HoverIconButton::sizeHint() const {
    const int side = symbolExtent() + 2 * clickMargin;
    return {side, side};
}

void HoverIconButton::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    const double opacity = restOpacity + (1 - restOpacity) * m_hover.progress();
    const QRectF symbol(clickMargin, clickMargin, symbolExtent(), symbolExtent());
    drawSymbol(painter, symbol, m_systemName, faded(lookOf(*this).secondary, opacity));
}

} // namespace quillory::ui
