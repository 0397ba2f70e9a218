// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <QString>

#include <optional>

/// The rules by which a draft is looked at, as pure functions of values.
namespace quillory {

/// The same text but for the kind and number of white space between its words, for comparing a field's value with what
/// was written into it.
[[nodiscard]] QString normalized(const QString &text);

/// Whether a text has at least so many characters; counts no further than needed.
[[nodiscard]] bool hasAtLeast(const QString &text, qint64 characters);
/// Whether a text has more than so many characters.
[[nodiscard]] bool hasMoreThan(const QString &text, qint64 characters);

/// Whether a field with this value holds nothing of the user's: white space, or its placeholder.
[[nodiscard]] bool isEmptyField(const QString &value, const QString &placeholder);

/// What decides whether a draft may be rewritten at all.
struct DraftGates {
    qint64 minChars = 0;
    qint64 maxChars = 0;
    std::optional<QString> lastInserted;
    double secondsSinceInsert = 0;
};
[[nodiscard]] bool mayRewrite(const QString &draft, const DraftGates &gates);

/// How far a pause in typing has come: nothing yet, requests may start unseen, or the cards are due.
enum class PausePhase { wait, prefetch, show };
[[nodiscard]] PausePhase pausePhase(double idleSeconds, qint64 debounceMs);

} // namespace quillory
