// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

#include <cstdint>
#include <set>

/// How the whole program counts, compares and trims text. Characters are user-perceived characters
/// (extended grapheme clusters); the white-space-and-newline set is Unicode's general category Z with U+0009 to
/// U+000D and U+0085. All pure, callable from any thread.
namespace quillory::text {

[[nodiscard]] qsizetype characterCount(QStringView text);
/// Whether a text has at least this many characters. Usually counts no further than needed.
[[nodiscard]] bool hasAtLeast(QStringView text, qsizetype count);
/// Whether a text has more than this many characters.
[[nodiscard]] bool hasMoreThan(QStringView text, qsizetype count);
/// The first count characters, or all of a shorter text.
[[nodiscard]] QString prefix(const QString &text, qsizetype count);
/// Whether the text starts with whole characters equal to those of the prefix.
[[nodiscard]] bool hasPrefix(const QString &text, const QString &prefix);
/// Equality as Unicode text: canonically equivalent strings are equal.
[[nodiscard]] bool equal(const QString &a, const QString &b);
/// The order that goes with that equality, for sets of strings.
struct Less {
    bool operator()(const QString &a, const QString &b) const;
};
using Set = std::set<QString, Less>;
/// A hash that goes with that equality; it is the same for equal texts during one run of the program.
[[nodiscard]] std::int64_t hash(const QString &text);
/// Whether a text contains another, comparing whole characters as equal() does.
[[nodiscard]] bool contains(const QString &text, const QString &part);
[[nodiscard]] bool isWhitespaceOrNewline(char32_t character);
/// The code point at the start of a text that is not empty, and how many code units it takes; half a surrogate pair
/// stands for itself.
struct CodePoint {
    char32_t value = 0;
    int length = 1;
};
[[nodiscard]] CodePoint firstCodePoint(QStringView text);
/// "true" or "false".
[[nodiscard]] QString trueOrFalse(bool value);
/// A number with a fixed count of decimals as C's "%.nf" writes it, ties to even included, but with a full stop in
/// every locale.
[[nodiscard]] QString fixed(double number, int decimals);
/// With a question mark for each control character except line breaks and tabs, since a terminal would obey the others.
[[nodiscard]] QString printable(QString text);
/// Without the white space and line breaks at both ends.
[[nodiscard]] QString trimmed(const QString &text);
/// Without the spaces (category Zs) and tabs at both ends; line breaks stay.
[[nodiscard]] QString trimmedOfSpaces(const QString &text);
/// Without the spaces, tabs and punctuation (category P) at both ends; line breaks stay.
[[nodiscard]] QString trimmedOfSpacesAndPunctuation(const QString &text);

} // namespace quillory::text
