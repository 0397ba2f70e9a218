// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <limits>
#include <optional>

/// The rules by which a draft is looked at, as pure functions of values.
namespace quillory {

/// A text with every run of white space, no-break spaces included, as one space and none at the ends, for comparing a
/// field's value with what was written into it.
[[nodiscard]] QString normalized(const QString &text);

/// Whether a field with this value holds nothing of the user's: white space, or its placeholder.
[[nodiscard]] bool isEmptyField(const QString &value, const QString &placeholder);

/// What the decision about a field depends on.
struct FieldSituation {
    bool enabled = true;
    bool assistantMode = false;
    bool isTextElement = false;
    bool isBrowserUI = false;
    bool isChat = false;
    /// The number of characters as the application gives it, which spares reading a huge text.
    std::optional<double> length;
    /// Absent where the application does not tell, or the length already decided.
    std::optional<QString> value;
    QString placeholder;
    /// What can be read around the field, for whoever wants a request; it decides nothing here.
    std::optional<QString> conversation;
    qint64 minChars = 0;
    qint64 maxChars = 0;
    /// What was last written into a field, and how long ago.
    std::optional<QString> lastInserted = std::nullopt;
    double secondsSinceInsert = std::numeric_limits<double>::infinity();
};

/// What may be asked for about a field, or what stands in the way.
enum class Gate {
    switchedOff,
    noTextField,
    browserUI,
    noChat,
    /// The field says that it holds more than is ever asked about.
    tooLong,
    unreadable,
    /// The field is empty: a reply may be drafted, or that is switched off.
    reply,
    repliesAreOff,
    /// There is a draft: it may be rewritten, or not.
    rewrite,
    draftTooShort,
    draftTooLong,
    /// The draft is what was inserted, or something was a moment ago.
    justInserted,
};
/// The one place where the monitor, and whoever explains it, learn whether a field is looked at.
[[nodiscard]] Gate gateOf(const FieldSituation &field);

/// How far a pause in typing has come: nothing yet, requests may start unseen, or the cards are due.
enum class PausePhase { wait, prefetch, show };
[[nodiscard]] PausePhase pausePhase(double idleSeconds, qint64 debounceMs);

} // namespace quillory
