// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Monitor/DraftRules.h"

#include "Quillory/Text.h"

#include <algorithm>
#include <cmath>

namespace quillory {

namespace {
// Editors tidy up an inserted text, so it may settle before drafts are considered again.
constexpr double quietSecondsAfterInsert = 2.0;
constexpr double shortestPrefetch = 0.2;
constexpr double prefetchLead = 0.25;

Gate gateOfDraft(const QString &draft, const FieldSituation &field) {
    if (!text::hasAtLeast(text::trimmed(draft), field.minChars)) {
        return Gate::draftTooShort;
    }
    if (text::hasMoreThan(draft, field.maxChars)) {
        return Gate::draftTooLong;
    }
    const bool isQuiet = field.secondsSinceInsert <= quietSecondsAfterInsert;
    const bool isInserted = field.lastInserted && text::equal(normalized(draft), normalized(*field.lastInserted));
    return isQuiet || isInserted ? Gate::justInserted : Gate::rewrite;
}
} // namespace

QString normalized(const QString &text) {
    QString result;
    result.reserve(text.size());
    bool gap = false;
    for (const QChar unit : text) { // all white space is in the basic plane
        if (text::isWhitespaceOrNewline(unit.unicode())) {
            gap = true;
            continue;
        }
        if (gap && !result.isEmpty()) {
            result += u' ';
        }
        gap = false;
        result += unit;
    }
    return result;
}

bool isEmptyField(const QString &value, const QString &placeholder) {
    if (text::trimmed(value).isEmpty()) {
        return true;
    }
    return !placeholder.isEmpty() && (text::equal(value, placeholder) || text::equal(value, placeholder + u'\n'));
}

Gate gateOf(const FieldSituation &field) {
    if (!field.enabled) {
        return Gate::switchedOff;
    }
    if (!field.isTextElement) {
        return Gate::noTextField;
    }
    if (field.isBrowserUI) {
        return Gate::browserUI;
    }
    if (!field.isChat) {
        return Gate::noChat;
    }
    if (field.length && std::trunc(*field.length) > static_cast<double>(field.maxChars)) {
        return Gate::tooLong;
    }
    if (!field.value) {
        return Gate::unreadable;
    }
    if (isEmptyField(*field.value, field.placeholder)) {
        return field.assistantMode ? Gate::reply : Gate::repliesAreOff;
    }
    return gateOfDraft(*field.value, field);
}

PausePhase pausePhase(double idleSeconds, qint64 debounceMs) {
    const double debounce = static_cast<double>(debounceMs) / 1000.0;
    if (idleSeconds >= debounce) {
        return PausePhase::show;
    }
    return idleSeconds >= std::max(shortestPrefetch, debounce - prefetchLead) ? PausePhase::prefetch : PausePhase::wait;
}

} // namespace quillory
