// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/AXText.h"
#include "Quillory/Field/ChatContext.h"
#include "Quillory/Monitor/TypingMonitor.h"
#include "Quillory/Records/ChoiceStats.h"
#include "Quillory/Records/FileLog.h"

#include <algorithm>

namespace quillory {

namespace {
// A reply belongs to the conversation that it was drafted for: at least half of that one's lines must still be there.
constexpr double leastOverlap = 0.5;
// A page too busy to be read is tried again for most of a second; after that the reply goes in unguarded.
constexpr int mostLooks = 5;
constexpr std::chrono::milliseconds lookPause{150};
// Long enough to see the card that is about to be accepted.
constexpr std::chrono::milliseconds debugAcceptDelay{600};
} // namespace

void TypingMonitor::connectPanel() {
    m_panel.onAcceptCard = m_life.whileAlive([this](int index) { accept(index); });
    m_panel.onDismiss = m_life.whileAlive([this] { dismiss(); });
}

void TypingMonitor::accept(qint64 index) {
    accept({index, streamAt(index), platform::AXFreshness::now()}, mostLooks);
}

void TypingMonitor::accept(const Choice &choice, int looksLeft) {
    const auto target = m_panel.targetElement();
    // Other cards may have replaced these while the page was being read.
    if (!target || !m_panel.isCardAcceptable(choice.index) || streamAt(choice.index) != choice.stream) {
        return;
    }
    const auto look = guardedLook(*target, choice.askedAt, looksLeft == 1);
    if (look && !look->isAnswered && looksLeft > 1) {
        m_mainQueue.postAfter(lookPause,
                              m_life.whileAlive([this, choice, looksLeft] { accept(choice, looksLeft - 1); }));
        return;
    }
    if (look && look->conversation && !isDraftedFor(*look->conversation)) {
        dropSuggestion();
        return;
    }
    recordChoice(static_cast<std::size_t>(choice.index));
    insert(m_panel.cards()[choice.index].text.value_or(QString()), *target);
}

void TypingMonitor::insert(const QString &text, const Element &target) {
    // Ticks already expect the text before it has arrived, so the field's present look is taken first.
    std::optional<FieldSnapshot> lastSeen;
    if (!m_currentElementFrame.isZero()) {
        lastSeen = {target.pid(), m_lastText, m_currentElementFrame};
    }
    m_panel.hide();
    cancelStreams();
    m_lastInsertedText = text;
    m_lastInsertAt = m_mainQueue.now();
    m_lastRequestedSource = text;
    m_lastText = text;
    m_lastChangeAt.reset();
    m_ax.insert(text, target, m_pastes, lastSeen);
}

TypingMonitor::StreamPointer TypingMonitor::streamAt(qint64 index) const {
    return index >= 0 && index < std::ssize(m_streams) ? m_streams[static_cast<std::size_t>(index)] : nullptr;
}

std::optional<ChatContext::Look> TypingMonitor::guardedLook(const Element &target, platform::AXFreshness since,
                                                            bool isLast) const {
    if (m_streamKind != SuggestionKind::reply || m_replyContextLines.empty()) {
        return std::nullopt;
    }
    auto look = ChatContext::look(target, since);
    const auto focused = look.isAnswered ? std::nullopt : m_ax.focusedElement();
    if (focused && focused != target) {
        // A page that switches chats may replace its box, and the text would go into the new one.
        look = ChatContext::look(*focused, since);
    }
    if (!look.isAnswered && isLast) {
        // What was seen a moment ago is better than no guard.
        look = ChatContext::look(target, {});
    }
    return look;
}

bool TypingMonitor::isDraftedFor(const ChatContext::Conversation &conversation) const {
    const double overlap = ChatContext::overlap(ChatContext::distinctLines(conversation.text), m_replyContextLines);
    if (overlap < leastOverlap) {
        FileLog::log(QStringLiteral("accept blocked: only %1% conversation overlap (chat switch)")
                         .arg(static_cast<int>(overlap * 100)));
    }
    return overlap >= leastOverlap;
}

void TypingMonitor::recordChoice(std::size_t index) const {
    if (index >= m_streams.size()) {
        return;
    }
    const auto entry = [](const ModelStream &stream) { return ChoiceEntry{stream.model, stream.elapsed()}; };
    ChoiceRecord choice{entry(*m_streams[index]), {}};
    for (std::size_t i = 0; i < m_streams.size(); ++i) {
        if (i != index) {
            choice.competitors.push_back(entry(*m_streams[i]));
        }
    }
    m_stats.record(choice);
}

void TypingMonitor::dismiss() {
    m_dismissedHash = m_lastDraftedHash;
    dropSuggestion();
}

void TypingMonitor::acceptForDebugging() {
    auto &store = m_settings.store();
    const bool over = std::none_of(m_streams.begin(), m_streams.end(), [](const auto &s) { return s->isStreaming(); });
    if (!over || !m_panel.isVisible() || !store.boolean(settingsKey::debugAcceptOnce)) {
        return;
    }
    const auto index = m_panel.firstCompleteIndex();
    if (!index) {
        return;
    }
    store.set(settingsKey::debugAcceptOnce, false);
    FileLog::log(QStringLiteral("debug: auto-accepting card ") + QString::number(*index));
    m_mainQueue.postAfter(debugAcceptDelay, m_life.whileAlive([this, index = *index] { accept(index); }));
}

} // namespace quillory
