// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Rewriter.h"

#include "ModelService/Tone.h"
#include "ModelService/Words.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace quillory::demo {

namespace {

bool isListItem(const QString &line) {
    static const QRegularExpression pattern(QStringLiteral("^\\s*([-*•]|\\d+[.)])\\s"));
    return pattern.match(line).hasMatch();
}

/// A shorthand of several words becomes several words, so that the rules after this see each of them.
Sentence writtenOut(const Sentence &sentence) {
    Sentence result;
    for (const Word &word : sentence) {
        const auto longForm = word.plain ? words::writtenOut(word.lower()) : std::nullopt;
        if (!longForm) {
            result.push_back(word);
            continue;
        }
        const bool thanksForWelcome = *longForm == QStringLiteral("your") && &word != &sentence.back() &&
                                      (&word + 1)->lower() == QStringLiteral("welcome");
        const QStringList parts =
            (thanksForWelcome ? QStringLiteral("you're") : *longForm).split(u' ', Qt::SkipEmptyParts);
        for (const QString &part : parts) {
            result.push_back(plainWord(part));
        }
        result[result.size() - static_cast<std::size_t>(parts.size())].before = word.before;
        result.back().after = word.after;
        if (word.text[0].isUpper()) {
            capitalise(result[result.size() - static_cast<std::size_t>(parts.size())]);
        }
    }
    return result;
}

void dropRepeatedWords(Sentence &sentence) {
    static const QStringList droppable{QStringLiteral("the"), QStringLiteral("a"),   QStringLiteral("to"),
                                       QStringLiteral("you"), QStringLiteral("and"), QStringLiteral("is"),
                                       QStringLiteral("of"),  QStringLiteral("I")};
    const auto repeats = [](const Word &a, const Word &b) {
        return a.plain && a.lower() == b.lower() && a.after.isEmpty() && droppable.contains(a.lower());
    };
    sentence.erase(std::unique(sentence.begin(), sentence.end(), repeats), sentence.end());
}

} // namespace

QString Rewriter::rewrite(const QString &draft, Tone tone) const {
    const QStringList lines = draft.trimmed().split(u'\n');
    QStringList result;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        result << rewriteLine(lines[i], tone, i + 1 == lines.size());
    }
    return result.join(u'\n');
}

QString Rewriter::rewriteLine(const QString &line, Tone tone, bool lastLine) const {
    std::vector<Sentence> sentences = splitIntoSentences(line);
    if (isOtherLanguage(sentences)) {
        return line.trimmed();
    }
    for (Sentence &sentence : sentences) {
        sentence = writtenOut(sentence);
        correctWords(sentence);
        dropRepeatedWords(sentence);
    }
    if (isListItem(line)) {
        return joined(sentences);
    }
    sentences = splitOffThanks(sentences);
    for (Sentence &sentence : sentences) {
        applyTone(sentence, tone);
        punctuate(sentence, tone, lastLine || &sentence != &sentences.back());
    }
    return joined(sentences);
}

/// Words that English has not at all outnumber its everyday words: the speller would only do harm.
bool Rewriter::isOtherLanguage(const std::vector<Sentence> &sentences) const {
    int everyday = 0;
    int foreign = 0;
    bool anyWord = false;
    for (const Sentence &sentence : sentences) {
        for (const Word &word : sentence) {
            if (!word.plain) {
                continue;
            }
            anyWord = true;
            if (words::isCommon(word.lower()) || words::writtenOut(word.lower())) {
                ++everyday;
            } else if (!m_speller.knows(word.text) && !words::isCommon(m_speller.corrected(word.lower()))) {
                ++foreign;
            }
        }
    }
    return !anyWord || foreign > everyday;
}

void Rewriter::correctWords(Sentence &sentence) const {
    for (std::size_t i = 0; i < sentence.size(); ++i) {
        correctWord(sentence[i], i > 0 && words::isGreeting(sentence[i - 1].lower()));
    }
}

void Rewriter::correctWord(Word &word, bool afterGreeting) const {
    if (!word.plain || word.text.size() < 3 || word.text.contains(u'-')) {
        return;
    }
    const bool lowerCase = word.text == word.lower();
    if (lowerCase && afterGreeting && !m_speller.knows(word.text)) {
        capitalise(word);
        return;
    }
    if (lowerCase) {
        word.text = m_speller.corrected(word.text);
        return;
    }
    // A capital may begin a name: only a misspelling of an everyday word is one for certain.
    const QString corrected = m_speller.corrected(word.lower());
    if (!m_speller.knows(word.text) && words::isCommon(corrected) && word.text.mid(1) == word.lower().mid(1)) {
        word.text = corrected;
        capitalise(word);
    }
}

} // namespace quillory::demo
