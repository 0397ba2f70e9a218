// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

/// What the demo's rewriter knows about English words of chats. All arguments are in lower case.
namespace quillory::demo::words {

/// The written-out form of chat shorthand and of apostrophes left out ("pls", "dont"), which may be several words.
[[nodiscard]] std::optional<QString> writtenOut(const QString &word);
/// Whether people use the word so often that it is the likely meaning of a misspelling.
[[nodiscard]] bool isCommon(const QString &word);
[[nodiscard]] bool isGreeting(const QString &word);
/// A verb that asks for something when it opens a sentence ("send me ...").
[[nodiscard]] bool isRequestVerb(const QString &word);
/// A verb whose place before its subject makes a question ("can you ...").
[[nodiscard]] bool isAuxiliary(const QString &word);
/// The same for verbs that open nothing but questions ("is ...", "does ...").
[[nodiscard]] bool opensOnlyQuestions(const QString &word);
[[nodiscard]] bool isQuestionWord(const QString &word);
/// A word that can be a question's subject ("you", "the").
[[nodiscard]] bool startsSubject(const QString &word);
/// A word that a concise text does without ("just", "really").
[[nodiscard]] bool isFiller(const QString &word);

} // namespace quillory::demo::words
