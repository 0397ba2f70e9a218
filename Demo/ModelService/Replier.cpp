// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Replier.h"

#include <QRegularExpression>
#include <QSet>

namespace quillory::demo {

using namespace Qt::StringLiterals;

namespace {

/// The words that tell questions apart, without the endings of English plurals and verbs.
QSet<QString> tellingWords(const QString &text) {
    static const QRegularExpression word(
        u"\\b(?!(?:the|and|your?|can|could|does|for|have|how|are|what|when|where|much|please|there|with|this|that|from|"
        "long|will|would)\\b)\\w{3,}"_s,
        QRegularExpression::UseUnicodePropertiesOption);
    static const QRegularExpression ending(u"(?<=\\w{2})(ies|ing|ed|es|s|y)$"_s);
    QSet<QString> result;
    for (auto matches = word.globalMatch(text.toLower()); matches.hasNext();) {
        const QString found = matches.next().captured();
        result.insert(found.size() > 4 ? QString(found).remove(ending) : found);
    }
    return result;
}

/// The last line that the customer wrote; empty when the business wrote after it.
QString lastQuestion(const QString &conversation) {
    static const QRegularExpression line(u"^«(you|customer)» (.*)$"_s, QRegularExpression::MultilineOption);
    QString last;
    for (auto lines = line.globalMatch(conversation); lines.hasNext();) {
        const auto found = lines.next();
        last = found.captured(1) == u"you" ? QString() : found.captured(2);
    }
    return last;
}

} // namespace

QString replyTo(const QString &conversation, const QString &knowledge) {
    static const QRegularExpression entry(u"^Q: (.*?)\\nA: (.*?)(?=\\n\\nQ: |\\z)"_s,
                                          QRegularExpression::MultilineOption |
                                              QRegularExpression::DotMatchesEverythingOption);
    const QString question = lastQuestion(conversation);
    const QSet<QString> words = tellingWords(question);
    qsizetype most = 0;
    QString reply = question.contains(u'?') || question.contains(u'؟')
                        ? u"Let me check that and get back to you shortly."_s
                        : u"SKIP"_s;
    for (auto entries = entry.globalMatch(knowledge); entries.hasNext();) {
        const auto found = entries.next();
        if (const qsizetype shared = (tellingWords(found.captured(1)) & words).size(); shared > most) {
            most = shared;
            reply = found.captured(2).trimmed();
        }
    }
    return reply;
}

} // namespace quillory::demo
