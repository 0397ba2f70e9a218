// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/CopyMenu.h"

#include "Quillory/UI/Look.h"

#include <QApplication>
#include <QClipboard>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace quillory::ui {

namespace {

// Clicks outside the panel do not reach us, so the menu hides after this long without the pointer on it.
constexpr std::chrono::seconds hideDelay{4};
constexpr double entryHorizontalPadding = 18;
constexpr double entryVerticalPadding = 7;
/// From the menu to the edges of the panel, and from its own edge to the entry.
constexpr int menuMargin = 4;
constexpr double menuRadius = 8;
constexpr double entryRadius = 5;

QString label() {
    return QStringLiteral("Copy");
}

QFont entryFont() {
    return systemFont(12.5);
}

} // namespace

CopyMenu::CopyMenu(QWidget *parent) : QWidget(parent), m_hover(*this) {
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(label());
    resize(sizeHint());
    m_hideTimer.setSingleShot(true);
    m_hideTimer.callOnTimeout([this] { hide(); });
    hide();
}

QSize CopyMenu::sizeHint() const {
    const QFontMetricsF metrics(entryFont());
    return {static_cast<int>(std::ceil(metrics.horizontalAdvance(label()) + 2 * entryHorizontalPadding)),
            static_cast<int>(std::ceil(metrics.height() + 2 * entryVerticalPadding))};
}

void CopyMenu::popUp(QPoint place, const QString &text) {
    m_text = text;
    const QRect bounds = parentWidget()->rect().adjusted(menuMargin, menuMargin, -menuMargin, -menuMargin);
    move(std::clamp(place.x(), bounds.left(), std::max(bounds.left(), bounds.right() - width())),
         std::clamp(place.y(), bounds.top(), std::max(bounds.top(), bounds.bottom() - height())));
    raise();
    show();
}

void CopyMenu::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor ground = lookOf(*this).material;
    ground.setAlpha(255);
    painter.fillPath(continuousRoundedRect(rect(), menuRadius), ground);
    painter.setPen(QPen(faded(lookOf(*this).primary, 0.18), 1));
    painter.drawPath(continuousRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), menuRadius - 0.5));
    const QRectF entry = QRectF(rect()).adjusted(menuMargin, menuMargin, -menuMargin, -menuMargin);
    painter.fillPath(continuousRoundedRect(entry, entryRadius), faded(lookOf(*this).primary, 0.1 * m_hover.progress()));
    painter.setFont(entryFont());
    painter.setPen(lookOf(*this).primary);
    painter.drawText(rect(), Qt::AlignCenter, label());
}

void CopyMenu::enterEvent(QEnterEvent *event) {
    m_hideTimer.stop();
    QWidget::enterEvent(event);
}

void CopyMenu::leaveEvent(QEvent *event) {
    m_hideTimer.start(hideDelay);
    QWidget::leaveEvent(event);
}

void CopyMenu::mousePressEvent(QMouseEvent *event) {
    event->accept();
}

void CopyMenu::mouseReleaseEvent(QMouseEvent *event) {
    if (rect().contains(event->position().toPoint())) {
        QGuiApplication::clipboard()->setText(m_text);
        hide();
    }
}

void CopyMenu::showEvent(QShowEvent *event) {
    qApp->installEventFilter(this);
    m_hideTimer.start(hideDelay);
    QWidget::showEvent(event);
}

void CopyMenu::hideEvent(QHideEvent *event) {
    qApp->removeEventFilter(this);
    m_hideTimer.stop();
    m_text.clear();
    QWidget::hideEvent(event);
}

bool CopyMenu::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::MouseButtonPress && watched->isWidgetType() && watched != this) {
        hide();
    }
    return false;
}

} // namespace quillory::ui
