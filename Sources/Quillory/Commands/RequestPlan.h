// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/SuggestionKind.h"

#include <QString>

#include <optional>

/// What the program would ask the models for a field as it stands, as a pure function of values.
namespace quillory {

struct FieldSituation {
    bool enabled = false;
    bool assistantMode = false;
    bool isTextElement = false;
    bool isBrowserUI = false;
    bool isChat = false;
    /// As the application gives it, without the text itself.
    std::optional<double> length;
    std::optional<QString> value;
    QString placeholder;
    std::optional<QString> conversation;
    qint64 minChars = 0;
    qint64 maxChars = 0;
};

struct RequestPlan {
    /// Absent when nothing would be asked.
    std::optional<SuggestionKind> kind;
    /// Why nothing would be asked, as a sentence without its full stop.
    QString whyNot;
    /// The draft, or the conversation to reply to.
    QString source;
    /// The conversation behind a draft.
    std::optional<QString> context;
};

/// Follows the same gates as the typing monitor, as far as they depend on the field and the settings; what it has asked
/// or inserted before is not known here.
[[nodiscard]] RequestPlan planRequest(const FieldSituation &field);

} // namespace quillory
