// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Monitor/ReplyRules.h"

namespace quillory {

namespace {
// A suggestion that went away without being dismissed comes back for the same conversation, but not at once.
constexpr double redraftSeconds = 1.0;
// A conversation that keeps changing (messages arriving one by one, scrolling) is not answered anew at every look.
constexpr double similarRedraftSeconds = 0.8;
constexpr double similarOverlap = 0.5;
constexpr double sameOverlap = 0.85;
// How much of an accepted reply a message must contain to count as that reply, sent.
constexpr qsizetype sentReplyPrefix = 24;

bool changedOnlyAbove(const ReplyContext &now, const ReplyHistory &before, double overlap) {
    return overlap >= sameOverlap && before.suggestionStands && now.lastLine && before.lastLine &&
           text::equal(*now.lastLine, *before.lastLine);
}

bool endsWithSentReply(const ReplyContext &now, const ReplyHistory &before) {
    return before.lastInserted && now.lastLine &&
           text::contains(*now.lastLine, text::prefix(*before.lastInserted, sentReplyPrefix));
}

} // namespace

ReplyContext::ReplyContext(const ChatContext::Conversation &conversation)
    : hash(conversation.hash), lines(ChatContext::distinctLines(conversation.text)) {
    const QStringList all = conversation.text.split(u'\n', Qt::SkipEmptyParts);
    if (!all.isEmpty()) {
        lastLine = all.last();
    }
}

ReplyDecision decideReply(const ReplyContext &now, const ReplyHistory &before) {
    if (before.dismissedHash == now.hash) {
        return ReplyDecision::nothing;
    }
    if (before.draftedHash == now.hash) {
        return !before.suggestionStands && before.secondsSinceDraft > redraftSeconds ? ReplyDecision::draft
                                                                                     : ReplyDecision::nothing;
    }
    const double overlap = ChatContext::overlap(now.lines, before.lines);
    if (changedOnlyAbove(now, before, overlap) || endsWithSentReply(now, before)) {
        return ReplyDecision::remember;
    }
    if (overlap >= similarOverlap && before.secondsSinceDraft < similarRedraftSeconds) {
        return ReplyDecision::nothing;
    }
    return ReplyDecision::draft;
}

} // namespace quillory
