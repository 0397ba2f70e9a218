// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <QString>
#include <QStringView>

#include <cstdint>
#include <set>

/// Questions of text that have one right answer for the whole program. Characters are user-perceived characters
/// (extended grapheme clusters); the white-space-and-newline set is Unicode's general category Z with U+0009 to
/// U+000D and U+0085. All pure, callable from any thread.
namespace quillory::text {

[[nodiscard]] qsizetype characterCount(QStringView text);
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
/// A well-distributed hash that goes with that equality; the same for equal texts within one run.
[[nodiscard]] std::int64_t hash(const QString &text);
/// Whether a text contains another, whole characters compared as equal() does.
[[nodiscard]] bool contains(const QString &text, const QString &part);
[[nodiscard]] bool isWhitespaceOrNewline(char32_t character);
/// Without the white space and line breaks at both ends.
[[nodiscard]] QString trimmed(const QString &text);
/// Without the spaces (category Zs) and tabs at both ends; line breaks stay.
[[nodiscard]] QString trimmedOfSpaces(const QString &text);
/// Without the spaces, tabs and punctuation (category P) at both ends; line breaks stay.
[[nodiscard]] QString trimmedOfSpacesAndPunctuation(const QString &text);
/// Every no-break space as a space, every run of white space as one space, none at the ends.
[[nodiscard]] QString withCollapsedWhitespace(const QString &text);

} // namespace quillory::text
