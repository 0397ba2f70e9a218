// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/CopyMenu.h"

#include "Quillory/UI/Look.h"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
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

QFont entryFont() {
    return systemFont(12.5);
}

} // namespace

CopyMenu::CopyMenu(QWidget *parent) : HoverButton(parent) {
    setText(QStringLiteral("Copy"));
    setCursor(Qt::ArrowCursor);
    resize(sizeHint());
    m_hideTimer.setSingleShot(true);
    m_hideTimer.setInterval(hideDelay);
    m_hideTimer.callOnTimeout(this, &QWidget::hide);
    connect(this, &QAbstractButton::clicked, this, [this] {
        QGuiApplication::clipboard()->setText(m_text);
        hide();
    });
    hide();
}

QSize CopyMenu::sizeHint() const {
    const QFontMetricsF metrics(entryFont());
    return {static_cast<int>(std::ceil(metrics.horizontalAdvance(text()) + 2 * entryHorizontalPadding)),
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
    const Look &look = lookOf(*this);
    QColor ground = look.material;
    ground.setAlpha(255);
    drawRoundedBox(painter, rect(), menuRadius, ground, faded(look.primary, 0.18));
    const QRectF entry = QRectF(rect()).adjusted(menuMargin, menuMargin, -menuMargin, -menuMargin);
    painter.fillPath(continuousRoundedRect(entry, entryRadius), faded(look.primary, 0.1 * hover()));
    painter.setFont(entryFont());
    painter.setPen(look.primary);
    painter.drawText(rect(), Qt::AlignCenter, text());
}

bool CopyMenu::event(QEvent *event) {
    switch (event->type()) {
    case QEvent::Show:
        qApp->installEventFilter(this);
        m_hideTimer.start();
        break;
    case QEvent::Enter:
        m_hideTimer.stop();
        break;
    case QEvent::Leave:
        m_hideTimer.start();
        break;
    case QEvent::Hide:
        qApp->removeEventFilter(this);
        m_hideTimer.stop();
        m_text.clear();
        break;
    default:
        break;
    }
    return HoverButton::event(event);
}

bool CopyMenu::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::MouseButtonPress && watched->isWidgetType() && watched != this) {
        hide();
    }
    return false;
}

} // namespace quillory::ui
