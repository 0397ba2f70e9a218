// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Sentence.h"

#include "ModelService/Words.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace quillory::demo {

namespace {

const QString endMarks = QStringLiteral(".!?…");
const QString pauseMarks = QStringLiteral(",;:");

bool isPlainLetter(QChar c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'\'' || c == u'-';
}

bool isLink(const QString &text) {
    static const QRegularExpression pattern(QStringLiteral(R"(://|^www\.|@|^[\w-]+(\.[\w-]+)+(/|$))"));
    return pattern.match(text).hasMatch();
}

bool isMark(QChar c) {
    return endMarks.contains(c) || pauseMarks.contains(c);
}

bool isOnlyMarks(const QString &text) {
    return std::all_of(text.begin(), text.end(), isMark);
}

bool isLetterOrNumber(QChar c) {
    return c.isLetterOrNumber() || c.isMark();
}

Word parsed(const QString &piece) {
    const auto first = std::find_if(piece.begin(), piece.end(), isLetterOrNumber) - piece.begin();
    const auto last = std::find_if(piece.rbegin(), piece.rend(), isLetterOrNumber).base() - piece.begin();
    if (first >= last) {
        return {{}, piece, {}, false};
    }
    Word word{piece.left(first), piece.mid(first, last - first), piece.mid(last), false};
    if (isLink(word.text) || word.before.contains(u'#') || word.before.contains(u'@')) {
        auto end = piece.size();
        while (end > 0 && isMark(piece[end - 1])) {
            --end;
        }
        return {{}, piece.left(end), piece.mid(end), false};
    }
    word.text.replace(u'’', u'\'');
    word.plain = std::all_of(word.text.begin(), word.text.end(), isPlainLetter) ||
                 words::writtenOut(word.text.toLower()).has_value();
    return word;
}

/// Dashes become what people write in chats: a range gets "to", a pause a comma.
QString withoutDashes(QString line) {
    static const QRegularExpression range(QStringLiteral("(\\d)\\s*[–—]\\s*(\\d)"));
    static const QRegularExpression pause(QStringLiteral("(\\S)\\s*[–—]\\s*(?=\\S)"));
    return line.replace(range, QStringLiteral("\\1 to \\2")).replace(pause, QStringLiteral("\\1, "));
}

} // namespace

bool Word::endsSentence() const {
    return std::any_of(after.begin(), after.end(), [](QChar c) { return endMarks.contains(c); });
}

bool Word::endsWithMark() const {
    return std::any_of(after.begin(), after.end(), isMark);
}

std::vector<Sentence> splitIntoSentences(const QString &line) {
    static const QRegularExpression spaces(QStringLiteral("\\s+"));
    std::vector<Sentence> sentences;
    bool open = false;
    for (const QString &piece : withoutDashes(line).split(spaces, Qt::SkipEmptyParts)) {
        if (isOnlyMarks(piece) && !sentences.empty()) {
            sentences.back().back().after += piece;
            open = open && !sentences.back().back().endsSentence();
            continue;
        }
        if (!open) {
            sentences.emplace_back();
        }
        sentences.back().push_back(parsed(piece));
        open = !sentences.back().back().endsSentence();
    }
    return sentences;
}

QString joined(const std::vector<Sentence> &sentences) {
    QStringList pieces;
    for (const Sentence &sentence : sentences) {
        for (const Word &word : sentence) {
            pieces << word.before + word.text + word.after;
        }
    }
    return pieces.join(u' ');
}

Word plainWord(const QString &text) {
    return {{}, text, {}, true};
}

void capitalise(Word &word) {
    const QString rest = word.text.mid(1);
    if (word.plain && rest == rest.toLower()) {
        word.text = word.text.left(1).toUpper() + rest;
    }
}

} // namespace quillory::demo
