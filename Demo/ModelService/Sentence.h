// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <vector>

namespace quillory::demo {

/// A piece of a line between two spaces: a word with the marks around it.
struct Word {
    QString before;
    QString text;
    QString after;
    /// An English word, or at least one in its letters. Everything else (numbers, links, names in other scripts,
    /// emoji) is passed on as it came.
    bool plain = false;

    [[nodiscard]] QString lower() const { return plain ? text.toLower() : QString(); }
    [[nodiscard]] bool endsSentence() const;
    /// Whether any mark that separates follows (emoji don't count).
    [[nodiscard]] bool endsWithMark() const;
};

using Sentence = std::vector<Word>;

/// The sentences of one line, in order; none for an empty line.
[[nodiscard]] std::vector<Sentence> splitIntoSentences(const QString &line);
[[nodiscard]] QString joined(const std::vector<Sentence> &sentences);

[[nodiscard]] Word plainWord(const QString &text);
/// The word's first letter in upper case, unless it has capitals of its own further on.
void capitalise(Word &word);

} // namespace quillory::demo
