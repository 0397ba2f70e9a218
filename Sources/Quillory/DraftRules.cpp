// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/DraftRules.h"

#include "Quillory/Text.h"

#include <algorithm>

namespace quillory {

namespace {
// An inserted text settles (editors tidy it, models are not asked about it) before drafts are looked at again.
constexpr double quietSecondsAfterInsert = 2.0;
constexpr double shortestPrefetch = 0.2;
constexpr double prefetchLead = 0.25;
} // namespace

QString normalized(const QString &text) {
    return text::withCollapsedWhitespace(text);
}

bool hasAtLeast(const QString &text, qint64 characters) {
    if (text.size() < characters) {
        return false;
    }
    // A part of a text never has more characters than the whole, and mostly a short part settles it.
    const qsizetype part = std::min<qsizetype>(text.size(), 2 * characters);
    return characters <= 0 || text::characterCount(QStringView(text).first(part)) >= characters ||
           text::characterCount(text) >= characters;
}

bool hasMoreThan(const QString &text, qint64 characters) {
    return text.size() > characters && text::characterCount(text) > characters;
}

bool isEmptyField(const QString &value, const QString &placeholder) {
    if (text::trimmed(value).isEmpty()) {
        return true;
    }
    return !placeholder.isEmpty() && (text::equal(value, placeholder) || text::equal(value, placeholder + u'\n'));
}

bool mayRewrite(const QString &draft, const DraftGates &gates) {
    return gates.secondsSinceInsert > quietSecondsAfterInsert && hasAtLeast(text::trimmed(draft), gates.minChars) &&
           !hasMoreThan(draft, gates.maxChars) &&
           !(gates.lastInserted && text::equal(normalized(draft), normalized(*gates.lastInserted)));
}

PausePhase pausePhase(double idleSeconds, qint64 debounceMs) {
    const double debounce = static_cast<double>(debounceMs) / 1000.0;
    if (idleSeconds >= debounce) {
        return PausePhase::show;
    }
    return idleSeconds >= std::max(shortestPrefetch, debounce - prefetchLead) ? PausePhase::prefetch : PausePhase::wait;
}

} // namespace quillory
