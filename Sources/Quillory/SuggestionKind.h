// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace quillory {

/// What a model is asked for.
enum class SuggestionKind {
    /// A better wording of a draft that the user is typing.
    rewrite,
    /// The next reply to a visible conversation.
    reply,
};

} // namespace quillory
