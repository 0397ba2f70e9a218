// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Platform.h"
#include "Quillory/Field/ChatContext.h"
#include "Quillory/Monitor/ReplyRules.h"
#include "Quillory/Monitor/TypingMonitor.h"
#include "Quillory/Records/FileLog.h"

namespace quillory {

namespace {
// A look reads the page, so not every tick takes one.
constexpr double lookSeconds = 0.4;
} // namespace

void TypingMonitor::assistantTick(const Element &element) {
    const platform::Instant now = platform::current().mainQueue.now();
    if (now - m_lastContextAt < lookSeconds) {
        return;
    }
    m_lastContextAt = now;
    const auto conversation = ChatContext::extract(element);
    if (!conversation) {
        return;
    }
    const ReplyContext context(*conversation);
    switch (decideReply(context, replyHistory(now))) {
    case ReplyDecision::nothing:
        break;
    case ReplyDecision::remember:
        rememberConversation(context);
        break;
    case ReplyDecision::draft:
        rememberConversation(context);
        draftReply(element, conversation->text, now);
        break;
    }
}

ReplyHistory TypingMonitor::replyHistory(platform::Instant now) const {
    return {.draftedHash = m_lastDraftedHash,
            .dismissedHash = m_dismissedHash,
            .lines = m_replyContextLines,
            .lastLine = m_replyContextLastLine,
            .lastInserted = m_lastInsertedText,
            .suggestionStands = m_panel.isVisible() || !m_streams.empty(),
            .secondsSinceDraft = now - m_lastDraftStartAt};
}

void TypingMonitor::rememberConversation(const ReplyContext &context) {
    m_lastDraftedHash = context.hash;
    m_replyContextLines = context.lines;
    m_replyContextLastLine = context.lastLine;
}

void TypingMonitor::draftReply(const Element &element, const QString &conversation, platform::Instant now) {
    cancelStreams();
    m_lastDraftStartAt = now;
    m_dismissedHash.reset();
    FileLog::log(QStringLiteral("drafting reply (%1 chars)").arg(text::characterCount(conversation)));
    startStreams(conversation, element, true, SuggestionKind::reply);
}

} // namespace quillory
