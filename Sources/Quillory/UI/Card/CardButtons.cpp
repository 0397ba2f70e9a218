// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/CardButtons.h"

#include "Quillory/UI/Look.h"
#include "Quillory/UI/Symbols.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace quillory::ui {

namespace {

constexpr int hoverMilliseconds = 120;

constexpr double horizontalPadding = 14;
constexpr double verticalPadding = 8;
constexpr double symbolGap = 6;
constexpr double hoverBrightness = 0.08;
constexpr double pressedBrightness = -0.06;
constexpr double disabledOpacity = 0.45;

constexpr double restOpacity = 0.5;
constexpr int clickMargin = 6;

QFont acceptFont() {
    return systemFont(12.5, QFont::DemiBold);
}

} // namespace

HoverButton::HoverButton(QWidget *parent) : QAbstractButton(parent) {
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::PointingHandCursor);
    m_animation.setDuration(hoverMilliseconds);
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(0.0);
    m_animation.setEasingCurve(easeOut());
    connect(&m_animation, &QVariantAnimation::valueChanged, this, [this] { update(); });
}

bool HoverButton::event(QEvent *event) {
    if (event->type() == QEvent::Enter) {
        slideTo(1);
    } else if (event->type() == QEvent::Leave || event->type() == QEvent::Hide) {
        slideTo(0);
    }
    return QAbstractButton::event(event);
}

void HoverButton::slideTo(double end) {
    if (m_animation.endValue().toDouble() != end) {
        const double from = hover();
        m_animation.stop();
        m_animation.setStartValue(from);
        m_animation.setEndValue(end);
        m_animation.start();
    }
}

AcceptButton::AcceptButton(QWidget *parent) : HoverButton(parent) {
    setText(QStringLiteral("Use suggestion"));
}

QSize AcceptButton::sizeHint() const {
    const QFontMetricsF metrics(acceptFont());
    const double side = symbolSide(11);
    const double width = side + symbolGap + metrics.horizontalAdvance(text()) + 2 * horizontalPadding;
    const double height = std::max(side, metrics.height()) + 2 * verticalPadding;
    return {static_cast<int>(std::ceil(width)), static_cast<int>(std::round(height))};
}

void AcceptButton::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1.0 : disabledOpacity);
    const double hoverLift = isEnabled() ? hoverBrightness * hover() : 0;
    const QRectF capsule = rect();
    painter.setPen(Qt::NoPen);
    painter.setBrush(sharedGradient(capsule, isDown() ? pressedBrightness : hoverLift));
    painter.drawRoundedRect(capsule, capsule.height() / 2, capsule.height() / 2);

    const double side = symbolSide(11);
    const QRectF symbol(horizontalPadding, std::round((height() - side) / 2), side, side);
    drawSymbol(painter, symbol, symbolName::checkmark, Qt::white);
    painter.setFont(acceptFont());
    painter.setPen(Qt::white);
    painter.drawText(capsule.adjusted(symbol.right() + symbolGap, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text());
}

HoverIconButton::HoverIconButton(const QString &systemName, const QString &name, QWidget *parent)
    : HoverButton(parent), m_systemName(systemName) {
    setAccessibleName(name);
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
    const QRectF symbol(clickMargin, clickMargin, symbolExtent(), symbolExtent());
    const double opacity = restOpacity + (1 - restOpacity) * hover();
    drawSymbol(painter, symbol, m_systemName, faded(lookOf(*this).secondary, opacity));
}

} // namespace quillory::ui
