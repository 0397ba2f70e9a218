// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Panel/SuggestionCardData.h"

#include <QString>

#include <ostream>

using namespace Qt::StringLiterals;

// How failed expectations show what they compared. GoogleTest looks for these beside the types.

inline void PrintTo(const QString &text, std::ostream *out) {
    *out << '"' << text.toStdString() << '"';
}

namespace quillory {
inline void PrintTo(const SuggestionCardData &card, std::ostream *out) {
    *out << card.label.toStdString() << ": " << card.text.value_or(u"(waiting)"_s).toStdString()
         << (card.isComplete ? ", complete " : "") << card.elapsedText.value_or(QString()).toStdString()
         << (card.failed ? ", failed" : "");
}
} // namespace quillory
