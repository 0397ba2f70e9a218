// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/TextLines.h"

#include "Quillory/Text.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QRegularExpression>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <optional>

namespace quillory::ui {

namespace {

bool isLineBreak(QChar character) {
    const char16_t unit = character.unicode();
    return (unit >= u'\n' && unit <= u'\r') || unit == u'\u0085' || unit == u'\u2028' || unit == u'\u2029';
}

qsizetype commonPrefix(const QString &a, const QString &b) {
    return std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin();
}

/// The direction of the first letter that has one.
std::optional<bool> isRightToLeft(QStringView text) {
    while (!text.isEmpty()) {
        const auto [character, length] = text::firstCodePoint(text);
        text = text.sliced(length);
        const QChar::Direction direction = QChar::direction(character);
        if (direction == QChar::DirR || direction == QChar::DirAL) {
            return true;
        }
        if (direction == QChar::DirL) {
            return false;
        }
    }
    return std::nullopt;
}

/// Formats that draw emoji from a colour typeface, where one is installed. By itself Qt takes the first typeface that
/// has the character, often as a pale outline. A colour typeface as second family won't do: it would also colour what
/// is meant as text, such as a telephone or a heart without the emoji style.
QList<QTextLayout::FormatRange> emojiFormats(const QString &text, const QFont &font) {
    static const QString colourFamily = QStringLiteral("Noto Color Emoji");
    static const bool isInstalled = QFontDatabase::hasFamily(colourFamily);
    // What is an emoji by itself, by the style behind it or by a skin tone, with all that modifies or joins it.
    static const QRegularExpression emoji(
        QStringLiteral("(?:(?:\\p{EPres}|\\p{Emoji}(?=\\x{FE0F}|\\p{EMod}))"
                       "(?:\\p{EMod}|[\\x{FE0F}\\x{20E3}\\x{E0020}-\\x{E007F}]|\\x{200D}\\p{Emoji})*+(?!\\x{FE0E}))+"));
    QList<QTextLayout::FormatRange> formats;
    if (!isInstalled) {
        return formats;
    }
    QFont colour = font;
    colour.setFamilies(QStringList{colourFamily} + font.families());
    QTextCharFormat format;
    format.setFont(colour);
    for (auto found = emoji.globalMatch(text); found.hasNext();) {
        const auto match = found.next();
        formats.append({static_cast<int>(match.capturedStart()), static_cast<int>(match.capturedLength()), format});
    }
    return formats;
}

} // namespace

void TextLines::setFont(const QFont &font, double lineSpacing) {
    if (font == m_font && lineSpacing == m_lineSpacing) {
        return;
    }
    m_font = font;
    m_lineSpacing = lineSpacing;
    m_paragraphs.clear();
    appendParagraphs(0);
}

qsizetype TextLines::setText(const QString &text) {
    const qsizetype common = commonPrefix(m_text, text);
    if (common == text.size() && common == m_text.size()) {
        return common;
    }
    dropParagraphsFrom(common);
    const qsizetype kept = m_paragraphs.empty() ? 0 : m_paragraphs.back().start + m_paragraphs.back().length;
    m_text = text;
    appendParagraphs(kept);
    return common;
}

// Drops the paragraph that ends at the position as well: it may grow.
void TextLines::dropParagraphsFrom(qsizetype position) {
    while (!m_paragraphs.empty() && m_paragraphs.back().start + m_paragraphs.back().length >= position) {
        m_paragraphs.pop_back();
    }
}

qsizetype TextLines::lineBreakLength(qsizetype position) const {
    return QStringView(m_text).sliced(std::min(position, m_text.size())).startsWith(u"\r\n") ? 2 : 1;
}

void TextLines::appendParagraphs(qsizetype from) {
    qsizetype start = from;
    if (!m_paragraphs.empty()) {
        start += lineBreakLength(from);
    }
    bool rightToLeft = !m_paragraphs.empty() && m_paragraphs.back().rightToLeft;
    while (start <= m_text.size()) {
        const auto *end = std::find_if(m_text.cbegin() + start, m_text.cend(), isLineBreak);
        const qsizetype length = end - m_text.cbegin() - start;
        rightToLeft = isRightToLeft(QStringView(m_text).mid(start, length)).value_or(rightToLeft);
        m_paragraphs.push_back({start, length, rightToLeft, -1, 0, 0, nullptr});
        start += length;
        start += lineBreakLength(start);
    }
}

void TextLines::layOut(double width) {
    double y = 0;
    for (Paragraph &paragraph : m_paragraphs) {
        if (paragraph.width != width) {
            breakLines(paragraph, width);
        }
        paragraph.y = y;
        y += paragraph.height + m_lineSpacing;
    }
    m_height = std::max(0.0, y - m_lineSpacing);
}

void TextLines::breakLines(Paragraph &paragraph, double width) const {
    const QString text = m_text.mid(paragraph.start, paragraph.length);
    paragraph.layout = std::make_unique<QTextLayout>(text, m_font);
    paragraph.layout->setFormats(emojiFormats(text, m_font));
    // Explicitly: a QTextLayout by itself does not align to the right.
    QTextOption option(paragraph.rightToLeft ? Qt::AlignRight : Qt::AlignLeft);
    option.setTextDirection(paragraph.rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    paragraph.layout->setTextOption(option);
    paragraph.layout->setCacheEnabled(true);
    paragraph.width = width;
    const double leastHeight = QFontMetricsF(m_font).height();
    double y = 0;
    paragraph.layout->beginLayout();
    for (QTextLine line = paragraph.layout->createLine(); line.isValid(); line = paragraph.layout->createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, y});
        y += std::max(leastHeight, line.height()) + m_lineSpacing;
    }
    paragraph.layout->endLayout();
    paragraph.height = std::max(leastHeight, y - m_lineSpacing);
}

void TextLines::paint(QPainter &painter, const Paint &paint) const {
    painter.setPen(paint.color);
    for (const Paragraph &paragraph : m_paragraphs) {
        if (!paragraph.layout || paragraph.y + paragraph.height < paint.visible.top()) {
            continue;
        }
        if (paragraph.y > paint.visible.bottom()) {
            break;
        }
        QList<QTextLayout::FormatRange> ranges;
        const qsizetype begin = std::clamp<qsizetype>(paint.selection.begin - paragraph.start, 0, paragraph.length);
        const qsizetype end = std::clamp<qsizetype>(paint.selection.end - paragraph.start, 0, paragraph.length);
        if (begin < end) {
            QTextCharFormat format;
            format.setBackground(paint.selectionBackground);
            format.setForeground(paint.selectionColor);
            ranges.append({static_cast<int>(begin), static_cast<int>(end - begin), format});
        }
        paragraph.layout->draw(&painter, {0, paragraph.y}, ranges, paint.visible);
    }
}

qsizetype TextLines::positionAt(QPointF point) const {
    for (const Paragraph &paragraph : m_paragraphs) {
        const bool isLast = &paragraph == &m_paragraphs.back();
        if (!paragraph.layout || (point.y() > paragraph.y + paragraph.height + m_lineSpacing && !isLast)) {
            continue;
        }
        for (int i = 0; i < paragraph.layout->lineCount(); ++i) {
            const QTextLine line = paragraph.layout->lineAt(i);
            if (point.y() - paragraph.y <= line.y() + line.height() + m_lineSpacing ||
                i + 1 == paragraph.layout->lineCount()) {
                return paragraph.start + line.xToCursor(point.x());
            }
        }
        return paragraph.start;
    }
    return 0;
}

const TextLines::Paragraph *TextLines::paragraphHolding(qsizetype position) const {
    const auto found = std::find_if(m_paragraphs.begin(), m_paragraphs.end(), [&](const Paragraph &paragraph) {
        return position <= paragraph.start + paragraph.length;
    });
    return found == m_paragraphs.end() ? nullptr : &*found;
}

TextRange TextLines::wordAt(qsizetype position) const {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word, m_text);
    finder.setPosition(std::clamp<qsizetype>(position, 0, m_text.size()));
    const qsizetype begin = finder.isAtBoundary() ? finder.position() : finder.toPreviousBoundary();
    const qsizetype end = finder.toNextBoundary();
    return begin < 0 || end < 0 ? TextRange{position, position} : TextRange{begin, end};
}

TextRange TextLines::paragraphAt(qsizetype position) const {
    const Paragraph *paragraph = paragraphHolding(position);
    return paragraph == nullptr ? TextRange{} : TextRange{paragraph->start, paragraph->start + paragraph->length};
}

} // namespace quillory::ui
