// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Replier.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringList>

#include <algorithm>

namespace quillory::demo {

namespace {

const QString customerMark = QStringLiteral("«customer» ");
const QString ownMark = QStringLiteral("«you» ");

/// Words that every question has.
bool saysLittle(const QString &word) {
    static const QSet<QString> words{
        QStringLiteral("the"),   QStringLiteral("and"),   QStringLiteral("you"),  QStringLiteral("your"),
        QStringLiteral("can"),   QStringLiteral("could"), QStringLiteral("does"), QStringLiteral("for"),
        QStringLiteral("have"),  QStringLiteral("how"),   QStringLiteral("are"),  QStringLiteral("what"),
        QStringLiteral("when"),  QStringLiteral("where"), QStringLiteral("much"), QStringLiteral("please"),
        QStringLiteral("there"), QStringLiteral("with"),  QStringLiteral("this"), QStringLiteral("that"),
        QStringLiteral("from"),  QStringLiteral("long"),  QStringLiteral("will"), QStringLiteral("would")};
    return word.size() < 3 || words.contains(word);
}

/// The words that tell questions apart, without the endings of English plurals and verbs.
QSet<QString> tellingWords(const QString &text) {
    static const QRegularExpression word(QStringLiteral("\\w+"), QRegularExpression::UseUnicodePropertiesOption);
    static const QRegularExpression ending(QStringLiteral("(ies|ing|ed|es|s|y)$"));
    QSet<QString> result;
    for (auto matches = word.globalMatch(text.toLower()); matches.hasNext();) {
        const QString found = matches.next().captured();
        if (!saysLittle(found)) {
            result.insert(found.size() > 4 ? QString(found).remove(ending) : found);
        }
    }
    return result;
}

/// The last line that the customer wrote; empty when the business wrote after it.
QString lastQuestion(const QString &conversation) {
    QStringList said;
    const QStringList lines = conversation.split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        if (line.startsWith(ownMark)) {
            said.clear();
        } else if (line.startsWith(customerMark)) {
            said.append(line.sliced(customerMark.size()));
        }
    }
    return said.isEmpty() ? QString() : said.last();
}

struct Entry {
    QString question;
    QString answer;
};

std::vector<Entry> entriesOf(const QString &knowledge) {
    static const QRegularExpression entry(QStringLiteral("^Q: (.*?)\\nA: (.*?)(?=\\n\\nQ: |\\z)"),
                                          QRegularExpression::MultilineOption |
                                              QRegularExpression::DotMatchesEverythingOption);
    std::vector<Entry> entries;
    for (auto matches = entry.globalMatch(knowledge); matches.hasNext();) {
        const auto match = matches.next();
        entries.push_back({match.captured(1), match.captured(2).trimmed()});
    }
    return entries;
}

} // namespace

QString replyTo(const QString &conversation, const QString &knowledge) {
    const QString question = lastQuestion(conversation);
    const QSet<QString> words = tellingWords(question);
    qsizetype most = 0;
    QString reply;
    for (const Entry &entry : entriesOf(knowledge)) {
        const qsizetype shared = (tellingWords(entry.question) & words).size();
        if (shared > most) {
            most = shared;
            reply = entry.answer;
        }
    }
    if (!reply.isEmpty()) {
        return reply;
    }
    const bool isAsked = question.contains(u'?') || question.contains(u'؟');
    return isAsked ? QStringLiteral("Let me check that and get back to you shortly.") : QStringLiteral("SKIP");
}

} // namespace quillory::demo
