// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ModelService/Speller.h"

#include <QString>

namespace quillory::demo {

enum class Tone { professional, friendly, concise, grammarOnly };

/// Rewrites chat drafts in English by rules: spelling, shorthand, capitals, punctuation and a little tone. The same
/// draft always gives the same answer. Line breaks stay, and so do other languages, names, numbers, links and emoji.
/// Not for several threads at once.
class Rewriter {
  public:
    [[nodiscard]] QString rewrite(const QString &draft, Tone tone) const;

  private:
    [[nodiscard]] bool isOtherLanguage(const QString &line) const;
    [[nodiscard]] QString withWordsCorrected(const QString &line) const;
    [[nodiscard]] QString correctedWord(const QString &word, bool followsGreeting) const;

    Speller m_speller;
};

} // namespace quillory::demo
