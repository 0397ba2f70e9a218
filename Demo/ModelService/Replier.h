// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace quillory::demo {

/// The reply to a conversation whose lines are marked with who said them, from questions and answers ("Q: ...",
/// "A: ..."): the answer to the question that shares the most words with what the customer said last, a promise to
/// find out when there is none, and "SKIP" when nothing was asked or the last message is the business's own. By rules:
/// the same conversation always gets the same reply.
[[nodiscard]] QString replyTo(const QString &conversation, const QString &knowledge);

} // namespace quillory::demo
