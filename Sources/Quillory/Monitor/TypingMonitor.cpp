// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Monitor/TypingMonitor.h"

#include "Quillory/Field/AXText.h"
#include "Quillory/Field/ChatContext.h"
#include "Quillory/Field/FieldSnapshot.h"
#include "Quillory/Field/PasteQueue.h"
#include "Quillory/Monitor/DraftRules.h"
#include "Quillory/Monitor/ReplyRules.h"
#include "Quillory/Records/FileLog.h"

namespace quillory {

using platform::AXAttribute;

namespace {

constexpr std::chrono::milliseconds pollInterval{100};
// A look at the conversation reads the page, so not every tick takes one.
constexpr double lookSeconds = 0.4;
// Pages move the focus around while they redraw; only a longer absence counts.
constexpr double flapSeconds = 2.5;
constexpr qsizetype loggedTitle = 40;

bool holds(const std::optional<QString> &text, const QString &value) {
    return text && text::equal(*text, value);
}

} // namespace

TypingMonitor::TypingMonitor(const Parts &parts)
    : m_settings(parts.settings), m_client(parts.client), m_stats(parts.stats), m_ax(parts.ax), m_pastes(parts.pastes),
      m_panel(parts.panel), m_accessibility(parts.accessibility), m_mainQueue(parts.mainQueue), m_ownPid(parts.ownPid) {
}

TypingMonitor::~TypingMonitor() = default;

void TypingMonitor::start() {
    connectPanel();
    m_pollTimer = m_mainQueue.repeat(pollInterval, [this] { tick(); });
}

void TypingMonitor::tick() {
    const bool trusted = followTrust();
    if (!trusted || !m_settings.store().boolean(settingsKey::enabled)) {
        m_panel.hide();
        return;
    }
    const auto element = m_ax.focusedElement();
    if (!element) {
        resetTracking();
        return;
    }
    if (element->pid() == m_ownPid) {
        return;
    }
    if (m_currentElement != element) {
        followFocus(*element);
        return;
    }
    m_focusFlapSince.reset();
    followField(*element);
}

bool TypingMonitor::followTrust() {
    const bool trusted = m_accessibility.isProcessTrusted();
    if (m_lastTrusted != trusted) {
        m_lastTrusted = trusted;
        FileLog::log(QStringLiteral("accessibility trusted -> ") + text::trueOrFalse(trusted));
    }
    return trusted;
}

void TypingMonitor::resetTracking() {
    m_currentElement.reset();
    m_lastText.clear();
    m_lastChangeAt.reset();
    dropSuggestion();
}

void TypingMonitor::dropSuggestion() {
    cancelStreams();
    m_panel.hide();
}

void TypingMonitor::followFocus(const Element &element) {
    const bool isText = AXText::isTextElement(element);
    if (isText && adoptRecreated(element)) {
        return;
    }
    if (!isText && focusMayComeBack()) {
        return;
    }
    adopt(element, isText);
    logFocus(element, isText);
}

bool TypingMonitor::adoptRecreated(const Element &element) {
    if (!m_currentElement || element.pid() != m_currentElement->pid()) {
        return false;
    }
    const auto candidate = snapshot(element);
    if (!candidate || !isRecreated({element.pid(), m_lastText, m_currentElementFrame}, *candidate)) {
        return false;
    }
    m_currentElement = element;
    m_currentElementFrame = candidate->frame;
    m_focusIsBrowserUI = m_ax.isBrowserUIField(element);
    m_focusIsChatApp = ChatContext::isChatApp(m_ax, element) || m_focusIsChatApp;
    FileLog::log(QStringLiteral("field re-created, adopted (chatApp=") + text::trueOrFalse(m_focusIsChatApp) + u')');
    return true;
}

bool TypingMonitor::focusMayComeBack() {
    if (!m_currentElement) {
        return false;
    }
    const platform::Instant now = m_mainQueue.now();
    if (!m_focusFlapSince) {
        m_focusFlapSince = now;
    }
    return now - *m_focusFlapSince < flapSeconds;
}

void TypingMonitor::adopt(const Element &element, bool isText) {
    m_focusFlapSince.reset();
    m_currentElement = element;
    m_currentElementFrame = AXText::frame(element).value_or(platform::Rect{});
    m_lastText = AXText::attribute<QString>(element, AXAttribute::value).value_or(QString());
    m_lastChangeAt.reset();
    m_lastRequestedSource.reset();
    dropSuggestion();
    m_focusIsBrowserUI = isText && m_ax.isBrowserUIField(element);
    m_focusIsChatApp = isText && ChatContext::isChatApp(m_ax, element);
    if (m_focusIsChatApp) {
        // The field may have the focus because another conversation was opened.
        ChatContext::prepare(element, platform::AXFreshness::now());
    }
}

void TypingMonitor::logFocus(const Element &element, bool isText) const {
    const QString unknown = QStringLiteral("?");
    const auto application = m_ax.application(element);
    const auto name = application ? application->localizedName : std::nullopt;
    const QString title = m_ax.focusedWindowTitle(element.pid()).value_or(unknown);
    QString line = QStringLiteral("focus -> ") +
                   AXText::attribute<QString>(element, AXAttribute::role).value_or(QString()) + QStringLiteral(" in ") +
                   name.value_or(unknown) + QStringLiteral(" [") + text::prefix(title, loggedTitle) +
                   QStringLiteral("], textElement=") + text::trueOrFalse(isText);
    if (m_focusIsBrowserUI) {
        line += QStringLiteral(", browser UI (excluded)");
    }
    if (m_focusIsChatApp) {
        line += QStringLiteral(", chat app");
    }
    FileLog::log(line);
}

void TypingMonitor::followField(const Element &element) {
    const FieldSituation field = situation(element);
    const Gate gate = gateOf(field);
    if (gate == Gate::tooLong) {
        m_panel.hide();
    }
    if (!field.value) {
        return;
    }
    followFrame(element);
    if (gate == Gate::reply || gate == Gate::repliesAreOff) {
        followEmptyField(element, *field.value, gate == Gate::reply);
    } else if (!text::equal(*field.value, m_lastText)) {
        followChangedDraft(*field.value);
    } else if (m_lastChangeAt && gate == Gate::rewrite) {
        followPause(element, *field.value);
    }
}

FieldSituation TypingMonitor::situation(const Element &element) const {
    const auto &store = m_settings.store();
    FieldSituation field;
    field.assistantMode = store.boolean(settingsKey::assistantMode);
    field.isBrowserUI = m_focusIsBrowserUI;
    field.isChat = m_focusIsChatApp;
    field.minChars = store.integer(settingsKey::minChars);
    field.maxChars = store.integer(settingsKey::maxChars);
    field.lastInserted = m_lastInsertedText;
    field.secondsSinceInsert = m_mainQueue.now() - m_lastInsertAt;
    field.isTextElement = field.isChat && !field.isBrowserUI && AXText::isTextElement(element);
    if (!field.isTextElement) {
        return field;
    }
    field.length = AXText::attribute<double>(element, AXAttribute::numberOfCharacters);
    if (gateOf(field) == Gate::tooLong) {
        return field;
    }
    field.value = AXText::attribute<QString>(element, AXAttribute::value);
    if (field.value) {
        field.placeholder = AXText::attribute<QString>(element, AXAttribute::placeholderValue).value_or(QString());
    }
    return field;
}

void TypingMonitor::followFrame(const Element &element) {
    const auto frame = AXText::frame(element);
    if (!frame) {
        return;
    }
    m_currentElementFrame = *frame;
    if (m_panel.isVisible()) {
        m_panel.reposition(*frame);
    }
}

void TypingMonitor::followEmptyField(const Element &element, const QString &value, bool mayReply) {
    if (!text::equal(value, m_lastText)) {
        m_lastText = value;
        m_lastChangeAt.reset();
        dropSuggestion();
    }
    // A box that is about to get an accepted reply is empty for a moment longer; it needs no second reply.
    if (mayReply && !m_pastes.isPasting()) {
        assistantTick(element);
    }
}

void TypingMonitor::followChangedDraft(const QString &value) {
    m_lastText = value;
    if (m_lastInsertedText && text::equal(normalized(value), normalized(*m_lastInsertedText))) {
        m_lastChangeAt.reset();
        return;
    }
    m_lastChangeAt = m_mainQueue.now();
    dropSuggestion();
}

void TypingMonitor::followPause(const Element &element, const QString &value) {
    const double idleSeconds = m_mainQueue.now() - *m_lastChangeAt;
    switch (pausePhase(idleSeconds, m_settings.store().integer(settingsKey::debounceMs))) {
    case PausePhase::wait:
        // The conversation was not read while the draft was typed.
        ChatContext::prepare(element, {});
        break;
    case PausePhase::prefetch:
        prefetchSuggestion(element, value);
        break;
    case PausePhase::show:
        showSuggestion(element, value);
        break;
    }
}

void TypingMonitor::showSuggestion(const Element &element, const QString &value) {
    if (m_panel.isVisible()) {
        return;
    }
    if (holds(m_streamSource, value)) {
        presentStreams(element);
        return;
    }
    // Streams may be left whose answers were discarded; those are not requested again.
    if (m_streams.empty() && !holds(m_lastRequestedSource, value)) {
        startStreams(value, element, true, SuggestionKind::rewrite);
    }
}

void TypingMonitor::prefetchSuggestion(const Element &element, const QString &value) {
    if (m_streams.empty() && !holds(m_lastRequestedSource, value)) {
        startStreams(value, element, false, SuggestionKind::rewrite);
    }
}

void TypingMonitor::assistantTick(const Element &element) {
    const platform::Instant now = m_mainQueue.now();
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
