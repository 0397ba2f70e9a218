// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

/// What the rewriter knows about the English of chats. All arguments are in lower case.
namespace quillory::demo::words {

/// The full form of chat shorthand and of words that lack their apostrophe ("pls", "dont"); it may be several words.
[[nodiscard]] std::optional<QString> writtenOut(const QString &word);
/// Whether the word is so frequent that a misspelling probably means it.
[[nodiscard]] bool isCommon(const QString &word);

} // namespace quillory::demo::words
