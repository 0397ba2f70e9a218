// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/SuggestionKind.h"

#include <QString>

/// Catches the typical ways in which models go wrong. Pure functions of values.
namespace quillory {

/// An answer without the tags that the prompt uses, trimmed.
[[nodiscard]] QString cleanedAnswer(const QString &raw);

struct Verdict {
    enum class Outcome { accepted, rejected, skipped };
    Outcome outcome = Outcome::accepted;
    /// Why it was rejected, for the log.
    QString reason;
    friend bool operator==(const Verdict &, const Verdict &) = default;
};
/// Judges a cleaned answer to a source (a draft or a conversation).
[[nodiscard]] Verdict screen(SuggestionKind kind, const QString &source, const QString &answer);

/// Whether a rewrite says nothing new: it is empty, or the draft without the white space around it.
[[nodiscard]] bool isUnchanged(const QString &draft, const QString &answer);

/// A display name made from a model's identifier: "anthropic/claude-haiku-4.5" is "Claude Haiku 4.5".
[[nodiscard]] QString prettyModelName(const QString &identifier);

} // namespace quillory
