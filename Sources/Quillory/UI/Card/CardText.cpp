// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/CardText.h"

#include "Quillory/UI/Look.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleHints>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace quillory::ui {

namespace {
constexpr int wheelStep = 120;
constexpr int pointsPerWheelStep = 48;
constexpr double scrollBarWidth = 4;
constexpr double shortestScrollBar = 24;
} // namespace

CardText::CardText(QWidget *parent) : QWidget(parent) {
    setFocusPolicy(Qt::NoFocus);
}

void CardText::setStyle(const QFont &font, double lineSpacing, bool selectable) {
    m_lines.setFont(font, lineSpacing);
    m_selectable = selectable;
    setCursor(selectable ? Qt::IBeamCursor : Qt::ArrowCursor);
    if (!selectable) {
        select({});
    }
}

void CardText::setText(const QString &text) {
    const QString before = m_lines.text();
    const qsizetype common = m_lines.setText(text);
    if (before == text) {
        return;
    }
    if (m_selection.end > common) {
        m_selection = {};
    }
    if (common == 0) {
        scrollTo(0);
    }
    m_anchor = std::min(m_anchor, common);
    setAccessibleName(text);
    update();
}

int CardText::heightForTextWidth(int width) {
    m_lines.layOut(width);
    return static_cast<int>(std::ceil(m_lines.height()));
}

QString CardText::selectedText() const {
    return text().mid(m_selection.begin, m_selection.end - m_selection.begin);
}

void CardText::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    painter.translate(0, -m_offset);
    TextLines::Paint paint;
    paint.color = m_selectable ? lookOf(*this).primary : lookOf(*this).secondary;
    paint.selection = m_selection;
    paint.selectionBackground = palette().brush(QPalette::Active, QPalette::Highlight);
    paint.selectionColor = palette().color(QPalette::Active, QPalette::HighlightedText);
    paint.visible = QRectF(event->rect()).translated(0, m_offset);
    m_lines.paint(painter, paint);
    painter.resetTransform();
    paintScrollBar(painter);
}

void CardText::paintScrollBar(QPainter &painter) const {
    if (maxOffset() == 0) {
        return;
    }
    const double length = std::max(shortestScrollBar, height() * height() / m_lines.height());
    const double top = (height() - length) * m_offset / maxOffset();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(faded(lookOf(*this).primary, 0.3));
    painter.drawRoundedRect(QRectF(width() - scrollBarWidth, top, scrollBarWidth, length), scrollBarWidth / 2,
                            scrollBarWidth / 2);
}

int CardText::maxOffset() const {
    return std::max(0, static_cast<int>(std::ceil(m_lines.height())) - height());
}

void CardText::scrollTo(int offset) {
    const int bounded = std::clamp(offset, 0, maxOffset());
    if (bounded != m_offset) {
        m_offset = bounded;
        update();
    }
}

void CardText::resizeEvent(QResizeEvent *event) {
    scrollTo(m_offset);
    QWidget::resizeEvent(event);
}

void CardText::wheelEvent(QWheelEvent *event) {
    if (maxOffset() == 0) {
        event->ignore();
        return;
    }
    m_wheelRemainder += event->angleDelta().y() * pointsPerWheelStep;
    scrollTo(m_offset - m_wheelRemainder / wheelStep);
    m_wheelRemainder %= wheelStep;
}

qsizetype CardText::positionAt(QPointF point) const {
    return m_lines.positionAt(point + QPointF(0, m_offset));
}

void CardText::select(TextRange range) {
    if (range != m_selection) {
        m_selection = range;
        update();
    }
}

void CardText::publishSelection() const {
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (clipboard->supportsSelection() && !m_selection.isEmpty()) {
        clipboard->setText(selectedText(), QClipboard::Selection);
    }
}

void CardText::mousePressEvent(QMouseEvent *event) {
    if (!m_selectable) {
        event->ignore();
        return;
    }
    if (event->button() == Qt::RightButton && onCopyMenu) {
        onCopyMenu(event->position().toPoint(), m_selection.isEmpty() ? text() : selectedText());
        return;
    }
    if (event->button() != Qt::LeftButton) {
        return;
    }
    m_dragging = false;
    m_pressedAt = event->position();
    m_anchor = positionAt(m_pressedAt);
    const bool isThirdClick = m_sinceDoubleClick.isValid() &&
                              m_sinceDoubleClick.elapsed() < QGuiApplication::styleHints()->mouseDoubleClickInterval();
    m_sinceDoubleClick.invalidate();
    select(isThirdClick ? m_lines.paragraphAt(m_anchor) : TextRange{});
}

void CardText::mouseMoveEvent(QMouseEvent *event) {
    if (!m_selectable || !event->buttons().testFlag(Qt::LeftButton)) {
        return;
    }
    // A small movement during a double click must not replace the word with a letter.
    const QPointF moved = event->position() - m_pressedAt;
    m_dragging = m_dragging || moved.manhattanLength() >= QGuiApplication::styleHints()->startDragDistance() / 2.0;
    if (m_dragging) {
        const qsizetype position = positionAt(event->position());
        select({std::min(m_anchor, position), std::max(m_anchor, position)});
    }
}

void CardText::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() == Qt::LeftButton) {
        publishSelection();
    }
}

void CardText::mouseDoubleClickEvent(QMouseEvent *event) {
    if (m_selectable && event->button() == Qt::LeftButton) {
        m_dragging = false;
        m_pressedAt = event->position();
        select(m_lines.wordAt(positionAt(m_pressedAt)));
        m_sinceDoubleClick.start();
    }
}

} // namespace quillory::ui
