// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Platform.h"
#include "Quillory/Field/AXText.h"
#include "Quillory/Field/ChatContext.h"
#include "Quillory/Field/FieldSnapshot.h"
#include "Quillory/Field/PasteQueue.h"
#include "Quillory/Monitor/DraftRules.h"
#include "Quillory/Monitor/TypingMonitor.h"
#include "Quillory/Records/FileLog.h"

namespace quillory {

using platform::AXAttribute;
using platform::current;

namespace {

// Pages move the focus about while they redraw; only a longer absence counts.
constexpr double flapSeconds = 2.5;
constexpr qsizetype loggedTitle = 40;

bool holds(const std::optional<QString> &text, const QString &value) {
    return text && text::equal(*text, value);
}

} // namespace

void TypingMonitor::tick() {
    const bool trusted = followTrust();
    if (!trusted || !m_settings.store().boolean(settingsKey::enabled)) {
        m_panel.hide();
        return;
    }
    const auto element = AXText::focusedElement();
    if (!element) {
        resetTracking();
        return;
    }
    if (element->pid() == current().process.identifier()) {
        return;
    }
    if (m_currentElement != element) {
        followFocus(*element);
        return;
    }
    m_focusFlapSince.reset();
    if (isEligible(*element)) {
        followField(*element);
    }
}

bool TypingMonitor::followTrust() {
    const bool trusted = current().accessibility.isProcessTrusted();
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
    m_focusIsBrowserUI = AXText::isBrowserUIField(element);
    m_focusIsChatApp = ChatContext::isChatApp(element) || m_focusIsChatApp;
    FileLog::log(QStringLiteral("field re-created, adopted (chatApp=") + text::trueOrFalse(m_focusIsChatApp) + u')');
    return true;
}

bool TypingMonitor::focusMayComeBack() {
    if (!m_currentElement) {
        return false;
    }
    const platform::Instant now = current().mainQueue.now();
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
    m_focusIsBrowserUI = isText && AXText::isBrowserUIField(element);
    m_focusIsChatApp = isText && ChatContext::isChatApp(element);
    if (m_focusIsChatApp) {
        // The field may have got the focus because another conversation came.
        ChatContext::prepare(element, platform::AXFreshness::now());
    }
}

void TypingMonitor::logFocus(const Element &element, bool isText) const {
    const QString unknown = QStringLiteral("?");
    const auto application = current().workspace.runningApplication(element.pid());
    const auto name = application ? application->localizedName : std::nullopt;
    const QString title = AXText::focusedWindowTitle(element.pid()).value_or(unknown);
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

bool TypingMonitor::isEligible(const Element &element) const {
    return !m_focusIsBrowserUI && m_focusIsChatApp && AXText::isTextElement(element);
}

void TypingMonitor::followField(const Element &element) {
    if (isTooLong(element)) {
        m_panel.hide();
        return;
    }
    const auto value = AXText::attribute<QString>(element, AXAttribute::value);
    if (!value) {
        return;
    }
    followFrame(element);
    const auto placeholder = AXText::attribute<QString>(element, AXAttribute::placeholderValue);
    if (isEmptyField(*value, placeholder.value_or(QString()))) {
        followEmptyField(element, *value);
    } else if (!text::equal(*value, m_lastText)) {
        followChangedDraft(*value);
    } else if (m_lastChangeAt) {
        followPause(element, *value);
    }
}

// Asks for the length alone, so that a huge text is never copied.
bool TypingMonitor::isTooLong(const Element &element) const {
    const auto length = AXText::attribute<double>(element, AXAttribute::numberOfCharacters);
    return length && std::trunc(*length) > static_cast<double>(m_settings.store().integer(settingsKey::maxChars));
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

void TypingMonitor::followEmptyField(const Element &element, const QString &value) {
    if (!text::equal(value, m_lastText)) {
        m_lastText = value;
        m_lastChangeAt.reset();
        dropSuggestion();
    }
    // A box that an accepted reply is on its way into is empty for a moment longer, and wants no second one.
    if (m_settings.store().boolean(settingsKey::assistantMode) && !isPasting()) {
        assistantTick(element);
    }
}

void TypingMonitor::followChangedDraft(const QString &value) {
    m_lastText = value;
    if (m_lastInsertedText && text::equal(normalized(value), normalized(*m_lastInsertedText))) {
        m_lastChangeAt.reset();
        return;
    }
    m_lastChangeAt = current().mainQueue.now();
    dropSuggestion();
}

void TypingMonitor::followPause(const Element &element, const QString &value) {
    const auto &store = m_settings.store();
    const platform::Instant now = current().mainQueue.now();
    if (!mayRewrite(value, {.minChars = store.integer(settingsKey::minChars),
                            .maxChars = store.integer(settingsKey::maxChars),
                            .lastInserted = m_lastInsertedText,
                            .secondsSinceInsert = now - m_lastInsertAt})) {
        return;
    }
    switch (pausePhase(now - *m_lastChangeAt, store.integer(settingsKey::debounceMs))) {
    case PausePhase::wait:
        // Nobody has looked at the conversation while the draft was typed.
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
    // Streams may be left whose answers were given up; those are not asked for again.
    if (m_streams.empty() && !holds(m_lastRequestedSource, value)) {
        startStreams(value, element, true, SuggestionKind::rewrite);
    }
}

void TypingMonitor::prefetchSuggestion(const Element &element, const QString &value) {
    if (m_streams.empty() && !holds(m_lastRequestedSource, value)) {
        startStreams(value, element, false, SuggestionKind::rewrite);
    }
}

} // namespace quillory
