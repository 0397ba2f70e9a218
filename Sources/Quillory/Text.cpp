// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/Text.h"

#include <QHashFunctions>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace quillory::text {

namespace {
/// Below this every code unit is a character of its own (but for CR LF) and already normal: no marks, no joiners.
constexpr char16_t firstMark = 0x300;

bool isSimple(QStringView text) {
    return std::ranges::none_of(text, [](QChar unit) { return unit.unicode() >= firstMark || unit == u'\r'; });
}

QTextBoundaryFinder boundaries(QStringView text) {
    return {QTextBoundaryFinder::Grapheme, text.data(), text.size()};
}

/// How many code units the first or the last code point takes of a text that is not empty.
qsizetype unitsAtStart(QStringView text) {
    return text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate() ? 2 : 1;
}

qsizetype unitsAtEnd(QStringView text) {
    const qsizetype last = text.size() - 1;
    return last > 0 && text[last].isLowSurrogate() && text[last - 1].isHighSurrogate() ? 2 : 1;
}

char32_t codePoint(QStringView units) {
    return units.size() == 2 ? QChar::surrogateToUcs4(units[0], units[1]) : units[0].unicode();
}

/// Sorting the marks on one letter takes the square of their number, a weapon for hostile messages; so runs longer than
/// any language has are sorted in pieces (Unicode's own stream-safe form cuts at 30).
constexpr int longestMarkRun = 64;

QString canonical(const QString &text) {
    if (isSimple(text)) {
        return text; // composing looks at every code point, so what cannot change is spared
    }
    QString result;
    qsizetype pieceStart = 0;
    int run = 0;
    for (qsizetype at = 0; at < text.size();) {
        const QStringView character = QStringView(text).sliced(at).first(unitsAtStart(QStringView(text).sliced(at)));
        run = QChar::combiningClass(codePoint(character)) == 0 ? 0 : run + 1;
        at += character.size();
        if (run == longestMarkRun) {
            result += text.sliced(pieceStart, at - pieceStart).normalized(QString::NormalizationForm_C);
            pieceStart = at;
            run = 0;
        }
    }
    return result + text.sliced(pieceStart).normalized(QString::NormalizationForm_C);
}

bool isSpace(char32_t character) {
    return character == U'\t' || QChar::category(character) == QChar::Separator_Space;
}

bool isPunctuation(char32_t character) {
    const QChar::Category category = QChar::category(character);
    return category >= QChar::Punctuation_Connector && category <= QChar::Punctuation_Other;
}

template <typename Predicate> QString trimmedOf(QStringView text, Predicate drop) {
    while (!text.isEmpty() && drop(codePoint(text.first(unitsAtStart(text))))) {
        text = text.sliced(unitsAtStart(text));
    }
    while (!text.isEmpty() && drop(codePoint(text.last(unitsAtEnd(text))))) {
        text.chop(unitsAtEnd(text));
    }
    return text.toString();
}
} // namespace

qsizetype characterCount(QStringView text) {
    if (isSimple(text)) {
        return text.size();
    }
    QTextBoundaryFinder finder = boundaries(text);
    qsizetype count = 0;
    while (finder.toNextBoundary() != -1) {
        ++count;
    }
    return count;
}

QString prefix(const QString &text, qsizetype count) {
    // No text has more characters than code units.
    if (count >= text.size() || isSimple(text)) {
        return text.left(std::max<qsizetype>(count, 0));
    }
    QTextBoundaryFinder finder = boundaries(text);
    for (qsizetype i = 0; i < count; ++i) {
        if (finder.toNextBoundary() == -1) {
            return text;
        }
    }
    return text.first(finder.position());
}

bool hasPrefix(const QString &text, const QString &prefix) {
    return equal(text::prefix(text, characterCount(prefix)), prefix);
}

bool equal(const QString &a, const QString &b) {
    if (a == b || (isSimple(a) && isSimple(b))) {
        return a == b;
    }
    return canonical(a) == canonical(b);
}

bool Less::operator()(const QString &a, const QString &b) const {
    return canonical(a) < canonical(b);
}

std::int64_t hash(const QString &text) {
    static_assert(sizeof(std::size_t) == sizeof(std::int64_t));
    return static_cast<std::int64_t>(qHash(canonical(text), QHashSeed::globalSeed()));
}

bool contains(const QString &text, const QString &part) {
    const QString whole = canonical(text);
    const QString wanted = canonical(part);
    qsizetype at = whole.indexOf(wanted);
    if (at < 0 || wanted.isEmpty() || isSimple(whole)) {
        return at >= 0;
    }
    QTextBoundaryFinder finder = boundaries(whole);
    const auto isBoundary = [&finder](qsizetype position) {
        finder.setPosition(position);
        return finder.isAtBoundary();
    };
    for (; at >= 0; at = whole.indexOf(wanted, at + 1)) {
        if (isBoundary(at) && isBoundary(at + wanted.size())) {
            return true;
        }
    }
    return false;
}

bool isWhitespaceOrNewline(char32_t character) {
    return (character >= 0x09 && character <= 0x0d) || character == 0x85 ||
           (QChar::category(character) >= QChar::Separator_Space &&
            QChar::category(character) <= QChar::Separator_Paragraph);
}

QString trimmed(const QString &text) {
    return trimmedOf(text, isWhitespaceOrNewline);
}

QString trimmedOfSpaces(const QString &text) {
    return trimmedOf(text, isSpace);
}

QString trimmedOfSpacesAndPunctuation(const QString &text) {
    return trimmedOf(text, [](char32_t character) { return isSpace(character) || isPunctuation(character); });
}

QString withCollapsedWhitespace(const QString &text) {
    QString result;
    result.reserve(text.size());
    bool gap = false;
    for (const QChar unit : text) { // all white space is in the basic plane
        if (isWhitespaceOrNewline(unit.unicode())) {
            gap = true;
            continue;
        }
        if (gap && !result.isEmpty()) {
            result += u' ';
        }
        gap = false;
        result += unit;
    }
    return result;
}

} // namespace quillory::text
