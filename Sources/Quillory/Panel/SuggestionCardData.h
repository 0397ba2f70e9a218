// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace quillory {

/// What one suggestion card shows. Failed: the text is a message. No text: still waiting. Otherwise the text so far,
/// or the final text once complete.
struct SuggestionCardData {
    QString label;
    std::optional<QString> text;
    /// Only a complete card can be accepted.
    bool isComplete = false;
    /// A short duration such as "1.2s", shown in a badge.
    std::optional<QString> elapsedText;
    bool failed = false;
    friend bool operator==(const SuggestionCardData &, const SuggestionCardData &) = default;
};

using SuggestionCards = QList<SuggestionCardData>;

} // namespace quillory
