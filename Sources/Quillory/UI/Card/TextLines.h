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

/// A plain text broken into lines at a width. Each paragraph is laid out by itself and in its own direction, so no
/// control character reaches beyond its paragraph, and text that grows costs its last paragraph only.
class TextLines {
  public:
    void setFont(const QFont &font, double lineSpacing);
    /// Gives the length of what the new text has in common with the start of the old one.
    qsizetype setText(const QString &text);
    [[nodiscard]] const QString &text() const { return m_text; }
    /// Breaks the text into lines; cheap when neither text nor width have changed.
    void layOut(double width);
    /// Of the text as laid out last, without line spacing after the last line.
    [[nodiscard]] double height() const { return m_height; }

    struct Paint {
        QColor color;
        TextRange selection;
        QBrush selectionBackground;
        QColor selectionColor;
        /// What of the text is to be painted, in its own coordinates.
        QRectF visible;
    };
    void paint(QPainter &painter, const Paint &paint) const;

    /// The position in the text that is closest to a point.
    [[nodiscard]] qsizetype positionAt(QPointF point) const;
    [[nodiscard]] TextRange wordAt(qsizetype position) const;
    [[nodiscard]] TextRange paragraphAt(qsizetype position) const;

  private:
    struct Paragraph {
        qsizetype start = 0;
        qsizetype length = 0;
        bool rightToLeft = false;
        /// The width it is laid out at; negative when it is not.
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
