// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QTextCursor>
#include <QTextDocument>
#include <QWidget>

#include <functional>

namespace quillory::ui {

/// The text of a card. It is always plain: what a model writes is never taken for markup. Each paragraph runs in the
/// direction of its own script. The mouse selects in the text although its window never has the focus: a selection
/// becomes the desktop's primary selection at once, and the right button asks for the copy menu. Where the text needs
/// more height than the view has, the wheel scrolls it.
class CardText final : public QWidget {
  public:
    explicit CardText(QWidget *parent);

    /// Called for the copy menu, with its position in this view's coordinates and the text to copy.
    std::function<void(QPoint, const QString &)> onCopyMenu;

    void setStyle(const QFont &font, double lineSpacing, bool selectable);
    /// Keeps the selection if the new text begins with everything up to its end. Only paragraphs that have changed are
    /// laid out again.
    void setText(const QString &text);
    /// The height in points that the whole text needs at this width. Lays it out.
    [[nodiscard]] int heightForTextWidth(int width);
    [[nodiscard]] const QString &text() const { return m_text; }
    [[nodiscard]] QString selectedText() const;
    [[nodiscard]] int scrollOffset() const { return m_offset; }

    /// The part of the view's width, in points, that is left free for the scroll bar at the right of the text.
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
    void formatFrom(int position);
    [[nodiscard]] int positionAt(QPointF point) const;
    [[nodiscard]] int textHeight() const;
    [[nodiscard]] int maxOffset() const;
    void scrollTo(int offset);
    void select(int begin, int end);
    void publishSelection() const;
    void paintScrollBar(QPainter &painter) const;

    QString m_text;
    /// The text with U+2029 for each line break, as it is in the document.
    QString m_shown;
    QTextDocument m_document;
    QTextCursor m_selection;
    double m_lineSpacing = 0;
    bool m_selectable = false;
    int m_anchor = 0;
    QPointF m_pressedAt;
    bool m_dragging = false;
    int m_offset = 0;
    int m_wheelRemainder = 0;
    QElapsedTimer m_sinceDoubleClick;
};

} // namespace quillory::ui
