// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/CardText.h"

#include "Quillory/UI/Look.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QMouseEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QStyleHints>
#include <QTextBlock>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace quillory::ui {

namespace {
constexpr int wheelStep = 120;
constexpr int pointsPerWheelStep = 48;
constexpr double scrollBarWidth = 4;
constexpr double shortestScrollBar = 24;

/// Has emoji drawn from a colour typeface, where one is installed. By itself Qt takes the first typeface that has the
/// character, often as a pale outline. A colour typeface as second family won't do: it would also colour what is meant
/// as text, such as a telephone or a heart without the emoji style.
void colourEmoji(const QTextBlock &block, const QString &text) {
    static const QString colourFamily = QStringLiteral("Noto Color Emoji");
    static const bool isInstalled = QFontDatabase::hasFamily(colourFamily);
    // What is an emoji by itself, by the style behind it or by a skin tone, with all that modifies or joins it.
    static const QRegularExpression emoji(
        QStringLiteral("(?:(?:\\p{EPres}|\\p{Emoji}(?=\\x{FE0F}|\\p{EMod}))"
                       "(?:\\p{EMod}|[\\x{FE0F}\\x{20E3}\\x{E0020}-\\x{E007F}]|\\x{200D}\\p{Emoji})*+(?!\\x{FE0E}))+"));
    if (!isInstalled) {
        return;
    }
    QTextCharFormat colour;
    colour.setFontFamilies(QStringList{colourFamily} + block.document()->defaultFont().families());
    QTextCursor cursor(block);
    for (auto found = emoji.globalMatch(text); found.hasNext();) {
        const auto match = found.next();
        cursor.setPosition(block.position() + static_cast<int>(match.capturedStart()));
        cursor.setPosition(block.position() + static_cast<int>(match.capturedEnd()), QTextCursor::KeepAnchor);
        cursor.setCharFormat(colour);
    }
}

} // namespace

CardText::CardText(QWidget *parent) : QWidget(parent), m_selection(&m_document) {
    setFocusPolicy(Qt::NoFocus);
    m_document.setUndoRedoEnabled(false);
    m_document.setDocumentMargin(0);
}

void CardText::setStyle(const QFont &font, double lineSpacing, bool selectable) {
    m_selectable = selectable;
    setCursor(selectable ? Qt::IBeamCursor : Qt::ArrowCursor);
    if (!selectable) {
        select(0, 0);
    }
    if (font != m_document.defaultFont() || lineSpacing != m_lineSpacing) {
        m_document.setDefaultFont(font);
        m_lineSpacing = lineSpacing;
        formatFrom(0);
    }
}

void CardText::setText(const QString &text) {
    if (text == m_text) {
        return;
    }
    static const QRegularExpression lineBreaks(QStringLiteral("\\R"));
    const QString before = m_shown;
    m_text = text;
    m_shown = QString(text).replace(lineBreaks, QString(QChar::ParagraphSeparator));
    const auto common = static_cast<int>(
        std::mismatch(before.begin(), before.end(), m_shown.begin(), m_shown.end()).first - before.begin());
    const bool keepsSelection = m_selection.selectionEnd() <= common;
    const int begin = keepsSelection ? m_selection.selectionStart() : 0;
    const int end = keepsSelection ? m_selection.selectionEnd() : 0;
    if (common == 0) {
        scrollTo(0);
    }
    m_anchor = std::min(m_anchor, common);
    QTextCursor changed(&m_document);
    changed.beginEditBlock();
    changed.setPosition(m_document.findBlock(common).position());
    const int from = changed.position();
    changed.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
    changed.insertText(m_shown.sliced(from), QTextCharFormat());
    formatFrom(from);
    changed.endEditBlock();
    select(begin, end);
    setAccessibleName(text);
}

/// Gives each paragraph from a position on its direction (that of the one above where it has no letter), and emoji
/// their typeface.
void CardText::formatFrom(int position) {
    QTextBlock block = m_document.findBlock(position);
    bool isRightToLeft = block.previous().blockFormat().layoutDirection() == Qt::RightToLeft;
    for (; block.isValid(); block = block.next()) {
        const QString text = block.text();
        constexpr QChar rightToLeftMark(0x200F);
        isRightToLeft = (isRightToLeft ? text + rightToLeftMark : text).isRightToLeft();
        QTextBlockFormat format;
        format.setLayoutDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        format.setLineHeight(m_lineSpacing, QTextBlockFormat::LineDistanceHeight);
        if (block.blockFormat() != format) {
            QTextCursor(block).setBlockFormat(format);
        }
        colourEmoji(block, text);
    }
}

int CardText::heightForTextWidth(int width) {
    if (m_document.textWidth() != width) {
        m_document.setTextWidth(width); // lays out everything, even where the width is the same
    }
    return textHeight();
}

int CardText::textHeight() const {
    return static_cast<int>(std::ceil(m_document.size().height() - m_lineSpacing)); // none below the last line
}

QString CardText::selectedText() const {
    return m_selection.selectedText().replace(QChar::ParagraphSeparator, u'\n');
}

void CardText::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    painter.translate(0, -m_offset);
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, m_selectable ? lookOf(*this).primary : lookOf(*this).secondary);
    context.clip = QRectF(event->rect()).translated(0, m_offset);
    QTextCharFormat selected;
    selected.setBackground(palette().brush(QPalette::Active, QPalette::Highlight));
    selected.setForeground(palette().brush(QPalette::Active, QPalette::HighlightedText));
    context.selections.append({m_selection, selected});
    m_document.documentLayout()->draw(&painter, context);
    painter.resetTransform();
    paintScrollBar(painter);
}

void CardText::paintScrollBar(QPainter &painter) const {
    if (maxOffset() == 0) {
        return;
    }
    const double length = std::max(shortestScrollBar, double(height()) * height() / textHeight());
    const double top = (height() - length) * m_offset / maxOffset();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(faded(lookOf(*this).primary, 0.3));
    painter.drawRoundedRect(QRectF(width() - scrollBarWidth, top, scrollBarWidth, length), scrollBarWidth / 2,
                            scrollBarWidth / 2);
}

int CardText::maxOffset() const {
    return std::max(0, textHeight() - height());
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

int CardText::positionAt(QPointF point) const {
    return m_document.documentLayout()->hitTest(point + QPointF(0, m_offset), Qt::FuzzyHit);
}

void CardText::select(int begin, int end) {
    m_selection.setPosition(begin);
    m_selection.setPosition(end, QTextCursor::KeepAnchor);
    update();
}

void CardText::publishSelection() const {
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (clipboard->supportsSelection() && m_selection.hasSelection()) {
        clipboard->setText(selectedText(), QClipboard::Selection);
    }
}

void CardText::mousePressEvent(QMouseEvent *event) {
    if (!m_selectable) {
        event->ignore();
        return;
    }
    if (event->button() == Qt::RightButton && onCopyMenu) {
        onCopyMenu(event->position().toPoint(), m_selection.hasSelection() ? selectedText() : text());
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
    const QTextBlock block = m_document.findBlock(m_anchor);
    select(isThirdClick ? block.position() : m_anchor, isThirdClick ? block.position() + block.length() - 1 : m_anchor);
}

void CardText::mouseMoveEvent(QMouseEvent *event) {
    if (!m_selectable || !event->buttons().testFlag(Qt::LeftButton)) {
        return;
    }
    // A small movement during a double click must not replace the word with a letter.
    const QPointF moved = event->position() - m_pressedAt;
    m_dragging = m_dragging || moved.manhattanLength() >= QGuiApplication::styleHints()->startDragDistance() / 2.0;
    if (m_dragging) {
        const auto [begin, end] = std::minmax({m_anchor, positionAt(event->position())});
        select(begin, end);
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
        m_selection.setPosition(positionAt(m_pressedAt));
        m_selection.select(QTextCursor::WordUnderCursor);
        update();
        m_sinceDoubleClick.start();
    }
}

} // namespace quillory::ui
