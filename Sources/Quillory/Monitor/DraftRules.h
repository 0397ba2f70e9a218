// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <limits>
#include <optional>

/// The rules for drafts, as pure functions of values.
namespace quillory {

/// A text with each run of white space (no-break spaces included) reduced to one space, and none at the ends: for
/// comparing a field's value with what was written into it.
[[nodiscard]] QString normalized(const QString &text);

/// Whether a field with this value holds nothing but white space or its placeholder.
[[nodiscard]] bool isEmptyField(const QString &value, const QString &placeholder);

/// What the decision about a field depends on.
struct FieldSituation {
    bool enabled = true;
    bool assistantMode = false;
    bool isTextElement = false;
    bool isBrowserUI = false;
    bool isChat = false;
    /// The number of characters according to the application, so that a huge text need not be read.
    std::optional<double> length;
    /// Absent if the application does not give it, or the length already decided.
    std::optional<QString> value;
    QString placeholder;
    /// The conversation around the field. Not read by the gate.
    std::optional<QString> conversation;
    qint64 minChars = 0;
    qint64 maxChars = 0;
    /// What was last written into a field, and how long ago that was.
    std::optional<QString> lastInserted = std::nullopt;
    double secondsSinceInsert = std::numeric_limits<double>::infinity();
};

/// What may be requested for a field, or why nothing may.
enum class Gate {
    switchedOff,
    noTextField,
    browserUI,
    noChat,
    /// The application reports more text than is ever sent.
    tooLong,
    unreadable,
    /// The field is empty: a reply may be drafted, or replies are switched off.
    reply,
    repliesAreOff,
    /// The field holds a draft, which may be rewritten or not.
    rewrite,
    draftTooShort,
    draftTooLong,
    /// The draft is what was last inserted, or something was inserted a moment ago.
    justInserted,
};
/// Decides what may be requested for a field, for the monitor and for the commands that explain what it does.
[[nodiscard]] Gate gateOf(const FieldSituation &field);

/// How long a pause in typing has become: too short, long enough to start requests unseen, or time for the cards.
enum class PausePhase { wait, prefetch, show };
[[nodiscard]] PausePhase pausePhase(double idleSeconds, qint64 debounceMs);

} // namespace quillory
