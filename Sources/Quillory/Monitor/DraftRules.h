// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

/// The rules by which a draft is looked at, as pure functions of values.
namespace quillory {

/// A text with every run of white space, no-break spaces included, as one space and none at the ends, for comparing a
/// field's value with what was written into it.
[[nodiscard]] QString normalized(const QString &text);

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
