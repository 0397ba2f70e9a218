// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ModelService/Rewriter.h"

namespace quillory::demo {

/// "... thanks" at the end becomes a sentence of its own.
[[nodiscard]] std::vector<Sentence> splitOffThanks(const std::vector<Sentence> &sentences);
/// Politeness, warmth or brevity, by changing, adding and dropping words.
void applyTone(Sentence &sentence, Tone tone);
/// The comma after a greeting, capitals, and the mark at the end. A line that others follow may end in a pause.
void punctuate(Sentence &sentence, Tone tone, bool endsText);

} // namespace quillory::demo
