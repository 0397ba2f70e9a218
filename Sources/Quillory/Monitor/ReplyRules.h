// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Field/ChatContext.h"

#include <optional>

/// The rules for drafting replies, as pure functions of values.
namespace quillory {

/// A conversation as the reply rules see it.
struct ReplyContext {
    explicit ReplyContext(const ChatContext::Conversation &conversation);

    std::int64_t hash = 0;
    text::Set lines;
    std::optional<QString> lastLine;
};

/// What is remembered about earlier drafts, and what is on screen now.
struct ReplyHistory {
    /// The conversation that was last drafted for, or last found to need no draft.
    std::optional<std::int64_t> draftedHash;
    /// The conversation whose reply the user did not want.
    std::optional<std::int64_t> dismissedHash;
    text::Set lines;
    std::optional<QString> lastLine;
    /// What the user last accepted into a field.
    std::optional<QString> lastInserted;
    /// Cards are shown, or there are requests, running or ended.
    bool suggestionStands = false;
    double secondsSinceDraft = 0;
};

/// Do nothing, remember the conversation without drafting for it, or draft.
enum class ReplyDecision { nothing, remember, draft };
[[nodiscard]] ReplyDecision decideReply(const ReplyContext &now, const ReplyHistory &before);

} // namespace quillory
