// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>
#include <QRectF>
#include <QString>
#include <QTextLayout>

#include <memory>
#include <vector>

class QPainter;

namespace quillory::ui {

/// A stretch of a text in UTF-16 code units; empty when begin equals end.
struct TextRange {
    qsizetype begin = 0;
    qsizetype end = 0;
    [[nodiscard]] bool isEmpty() const { return begin == end; }
    friend bool operator==(const TextRange &, const TextRange &) = default;
};

/// A plain text broken into lines. Each paragraph is laid out by itself and in its own direction, so a direction
/// control character has no effect beyond its paragraph, and when text is appended only the last paragraph is laid out
/// again.
class TextLines {
  public:
    void setFont(const QFont &font, double lineSpacing);
    /// Returns the length of the beginning that the old and the new text share.
    qsizetype setText(const QString &text);
    [[nodiscard]] const QString &text() const { return m_text; }
    /// Breaks the text into lines of this width in points. Cheap where neither text nor width has changed.
    void layOut(double width);
    /// Of the text as last laid out, in points, without line spacing after the last line.
    [[nodiscard]] double height() const { return m_height; }

    struct Paint {
        QColor color;
        TextRange selection;
        QBrush selectionBackground;
        QColor selectionColor;
        /// The part of the text to paint, in its own coordinates.
        QRectF visible;
    };
    void paint(QPainter &painter, const Paint &paint) const;

    /// The position in the text that is nearest to a point.
    [[nodiscard]] qsizetype positionAt(QPointF point) const;
    [[nodiscard]] TextRange wordAt(qsizetype position) const;
    [[nodiscard]] TextRange paragraphAt(qsizetype position) const;

  private:
    struct Paragraph {
        qsizetype start = 0;
        qsizetype length = 0;
        bool rightToLeft = false;
        /// The width it is laid out for; negative before that.
        double width = -1;
        double y = 0;
        double height = 0;
        std::unique_ptr<QTextLayout> layout;
    };
    void dropParagraphsFrom(qsizetype position);
    [[nodiscard]] qsizetype lineBreakLength(qsizetype position) const;
    void appendParagraphs(qsizetype from);
    void breakLines(Paragraph &paragraph, double width) const;
    [[nodiscard]] const Paragraph *paragraphHolding(qsizetype position) const;

    QString m_text;
    QFont m_font;
    double m_lineSpacing = 0;
    double m_height = 0;
    std::vector<Paragraph> m_paragraphs;
};

} // namespace quillory::ui
