// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Text.h"

#include <QHashFunctions>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>
#include <charconv>

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

CodePoint lastCodePoint(QStringView text) {
    const qsizetype last = text.size() - 1;
    const bool isPair = last > 0 && text[last].isLowSurrogate() && text[last - 1].isHighSurrogate();
    return firstCodePoint(text.last(isPair ? 2 : 1));
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
        const CodePoint character = firstCodePoint(QStringView(text).sliced(at));
        run = QChar::combiningClass(character.value) == 0 ? 0 : run + 1;
        at += character.length;
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
    while (!text.isEmpty() && drop(firstCodePoint(text).value)) {
        text = text.sliced(firstCodePoint(text).length);
    }
    while (!text.isEmpty() && drop(lastCodePoint(text).value)) {
        text.chop(lastCodePoint(text).length);
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

bool hasAtLeast(QStringView text, qsizetype count) {
    if (text.size() < count || count <= 0) {
        return count <= 0;
    }
    // A part that ends between two code points never has more characters than the whole, and mostly a short one settles
    // it.
    qsizetype part = std::min(text.size(), 2 * count);
    if (part < text.size() && text[part].isLowSurrogate()) {
        ++part;
    }
    return characterCount(text.first(part)) >= count || (part < text.size() && characterCount(text) >= count);
}

bool hasMoreThan(QStringView text, qsizetype count) {
    return text.size() > count && characterCount(text) > count;
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

CodePoint firstCodePoint(QStringView text) {
    if (text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate()) {
        return {QChar::surrogateToUcs4(text[0], text[1]), 2};
    }
    return {text[0].unicode(), 1};
}

QString trueOrFalse(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString fixed(double number, int decimals) {
    std::array<char, 400> digits; // the largest double takes 309 before the point
    const auto [end, error] =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed, decimals);
    return QString::fromLatin1(digits.data(), end - digits.data());
}

QString printable(QString text) {
    const auto isObeyed = [](QChar character) {
        return character.category() == QChar::Other_Control && character != u'\n' && character != u'\t';
    };
    std::ranges::replace_if(text, isObeyed, QChar(u'?'));
    return text;
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

} // namespace quillory::text
