// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Monitor/AnswerScreening.h"

#include "Quillory/Text.h"

#include <QStringList>

namespace quillory {

namespace {

constexpr qint64 longestReply = 1200;
// A short draft may well grow; a long one that triples was answered, not rewritten.
constexpr qint64 shortestJudgedDraft = 40;
constexpr qint64 mostGrowth = 3;

Verdict screenReply(const QString &answer) {
    if (text::hasMoreThan(answer, longestReply)) {
        return {Verdict::Outcome::rejected,
                QStringLiteral("reply too long (%1 chars)").arg(text::characterCount(answer))};
    }
    const QString probe = text::trimmedOfSpacesAndPunctuation(answer.toUpper());
    return {probe == QStringLiteral("SKIP") ? Verdict::Outcome::skipped : Verdict::Outcome::accepted, {}};
}

Verdict screenRewrite(const QString &draft, const QString &answer) {
    if (!text::hasAtLeast(draft, shortestJudgedDraft)) {
        return {};
    }
    const qint64 draftCount = text::characterCount(draft);
    if (!text::hasMoreThan(answer, mostGrowth * draftCount)) {
        return {};
    }
    return {Verdict::Outcome::rejected, QStringLiteral("%1 chars for a %2-char draft (answered instead of rewriting)")
                                            .arg(text::characterCount(answer))
                                            .arg(draftCount)};
}

} // namespace

QString cleanedAnswer(const QString &raw) {
    QString answer = raw;
    for (const auto tag : {"<draft>", "</draft>", "<conversation>", "</conversation>"}) {
        answer.remove(QLatin1StringView(tag));
    }
    return text::trimmed(answer);
}

Verdict screen(SuggestionKind kind, const QString &source, const QString &answer) {
    return kind == SuggestionKind::reply ? screenReply(answer) : screenRewrite(source, answer);
}

bool isUnchanged(const QString &draft, const QString &answer) {
    return answer.isEmpty() || text::equal(answer, text::trimmed(draft));
}

QString prettyModelName(const QString &identifier) {
    const QStringList parts = identifier.split(u'/', Qt::SkipEmptyParts);
    QStringList words = (parts.isEmpty() ? identifier : parts.last()).split(u'-', Qt::SkipEmptyParts);
    for (QString &word : words) {
        const QString first = text::prefix(word, 1);
        word = first.toUpper() + word.sliced(first.size());
    }
    return words.join(u' ');
}

} // namespace quillory
