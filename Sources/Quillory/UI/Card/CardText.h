// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/UI/Card/TextLines.h"

#include <QElapsedTimer>
#include <QWidget>

#include <functional>

namespace quillory::ui {

/// The text of a card. Plain text always: what a model writes is never taken for mark-up. It can be selected with the
/// mouse although its window never has the focus: a selection becomes the desktop's primary selection at once, and
/// the second mouse button asks for the copy menu. Given less height than its text needs it scrolls with the wheel.
class CardText final : public QWidget {
  public:
    explicit CardText(QWidget *parent);

    /// Gets the place of the menu, in this view's coordinates, and the text to copy.
    std::function<void(QPoint, const QString &)> onCopyMenu;

    void setStyle(const QFont &font, double lineSpacing, bool selectable);
    /// Keeps a selection that the new text still holds.
    void setText(const QString &text);
    /// The height that the whole text needs when laid out at this width, in points.
    [[nodiscard]] int heightForTextWidth(int width);
    [[nodiscard]] const QString &text() const { return m_lines.text(); }
    [[nodiscard]] QString selectedText() const;
    [[nodiscard]] int scrollOffset() const { return m_offset; }

    /// To the right of the text, for the scroll bar. Part of the view's width.
    static constexpr int scrollMargin = 10;

  protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

  private:
    [[nodiscard]] qsizetype positionAt(QPointF point) const;
    [[nodiscard]] int maxOffset() const;
    void scrollTo(int offset);
    void select(TextRange range);
    void publishSelection() const;
    void paintScrollBar(QPainter &painter) const;

    TextLines m_lines;
    bool m_selectable = false;
    TextRange m_selection;
    qsizetype m_anchor = 0;
    QPointF m_pressedAt;
    bool m_dragging = false;
    int m_offset = 0;
    int m_wheelRemainder = 0;
    QElapsedTimer m_sinceDoubleClick;
};

} // namespace quillory::ui
