// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <memory>
#include <optional>

class Hunspell;

namespace quillory::demo {

/// The full form of chat shorthand (in lower case) and of words that lack their apostrophe ("pls", "dont"); it may be
/// several words.
[[nodiscard]] std::optional<QString> writtenOut(const QString &word);
/// Whether a word, in lower case, is so frequent that a misspelling probably means it.
[[nodiscard]] bool isCommon(const QString &word);

/// American English spelling. A correction is made only when it is near and plausible: a name that the dictionary
/// does not know is better left alone than turned into some word. Not for several threads at once.
class Speller {
  public:
    /// Throws std::runtime_error when the system has no American English dictionary.
    Speller();
    ~Speller();

    [[nodiscard]] bool knows(const QString &word) const;
    /// The word itself when it is correct or nothing plausible is near.
    [[nodiscard]] QString corrected(const QString &word) const;

  private:
    std::unique_ptr<Hunspell> m_dictionary;
};

} // namespace quillory::demo
