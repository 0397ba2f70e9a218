// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/AcceptButton.h"

#include "Quillory/UI/Look.h"
#include "Quillory/UI/Symbols.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace quillory::ui {

namespace {

constexpr double horizontalPadding = 14;
constexpr double verticalPadding = 8;
constexpr double symbolGap = 6;
constexpr double hoverBrightness = 0.08;
constexpr double pressedBrightness = -0.06;
constexpr double disabledOpacity = 0.45;

QFont buttonFont() {
    return systemFont(12.5, QFont::DemiBold);
}

} // namespace

AcceptButton::AcceptButton(QWidget *parent) : QAbstractButton(parent), m_hover(*this) {
    setText(QStringLiteral("Use suggestion"));
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::PointingHandCursor);
}

QSize AcceptButton::sizeHint() const {
    const QFontMetricsF metrics(buttonFont());
    const double side = symbolSide(11);
    const double width = side + symbolGap + metrics.horizontalAdvance(text()) + 2 * horizontalPadding;
    const double height = std::max(side, metrics.height()) + 2 * verticalPadding;
    return {static_cast<int>(std::ceil(width)), static_cast<int>(std::round(height))};
}

void AcceptButton::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1.0 : disabledOpacity);
    const double hoverLift = isEnabled() ? hoverBrightness * m_hover.progress() : 0;
    const QRectF capsule = rect();
    painter.setPen(Qt::NoPen);
    painter.setBrush(sharedGradient(capsule, isDown() ? pressedBrightness : hoverLift));
    painter.drawRoundedRect(capsule, capsule.height() / 2, capsule.height() / 2);

    const double side = symbolSide(11);
    const QRectF symbol(horizontalPadding, std::round((height() - side) / 2), side, side);
    drawSymbol(painter, symbol, symbolName::checkmark, Qt::white);
    painter.setFont(buttonFont());
    painter.setPen(Qt::white);
    painter.drawText(capsule.adjusted(symbol.right() + symbolGap, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text());
}

} // namespace quillory::ui
