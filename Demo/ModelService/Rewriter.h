// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ModelService/Sentence.h"
#include "ModelService/Speller.h"

#include <QString>

namespace quillory::demo {

enum class Tone { professional, friendly, concise, grammarOnly };

/// Rewrites chat drafts in English by rules: spelling, shorthand, capitals, marks, and a little tone. The same draft
/// always gives the same answer. Lines stay lines; other languages, names, numbers, links and emoji stay as they are.
class Rewriter {
  public:
    [[nodiscard]] QString rewrite(const QString &draft, Tone tone) const;

  private:
    [[nodiscard]] QString rewriteLine(const QString &line, Tone tone, bool lastLine) const;
    [[nodiscard]] bool isOtherLanguage(const std::vector<Sentence> &sentences) const;
    void correctWords(Sentence &sentence) const;
    void correctWord(Word &word, bool afterGreeting) const;

    Speller m_speller;
};

} // namespace quillory::demo
