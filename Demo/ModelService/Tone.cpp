// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Tone.h"

#include "ModelService/Words.h"

#include <QHash>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace quillory::demo {

namespace {

QString lowerAt(const Sentence &sentence, std::size_t i) {
    return i < sentence.size() ? sentence[i].lower() : QString();
}

bool matches(const Sentence &sentence, std::size_t from, const QStringList &texts) {
    for (qsizetype i = 0; i < texts.size(); ++i) {
        if (lowerAt(sentence, from + static_cast<std::size_t>(i)) != texts[i]) {
            return false;
        }
    }
    return true;
}

bool contains(const Sentence &sentence, const QString &text) {
    return std::any_of(sentence.begin(), sentence.end(), [&](const Word &word) { return word.lower() == text; });
}

/// Where the text after "hello", "hi Ahmed" or "good morning" starts; 0 without a greeting.
std::size_t greetingLength(const Sentence &sentence) {
    static const QStringList times{QStringLiteral("morning"), QStringLiteral("afternoon"), QStringLiteral("evening")};
    static const QStringList addressed{QStringLiteral("there"), QStringLiteral("sir"),      QStringLiteral("madam"),
                                       QStringLiteral("all"),   QStringLiteral("everyone"), QStringLiteral("team"),
                                       QStringLiteral("dear"),  QStringLiteral("again"),    QStringLiteral("guys")};
    const bool goodTime = lowerAt(sentence, 0) == QStringLiteral("good") && times.contains(lowerAt(sentence, 1));
    if (!goodTime && !words::isGreeting(lowerAt(sentence, 0))) {
        return 0;
    }
    std::size_t length = goodTime ? 2 : 1;
    if (length < sentence.size() && sentence[length - 1].after.isEmpty()) {
        const Word &next = sentence[length];
        const bool name = next.plain && next.text[0].isUpper() && next.text != QStringLiteral("I") &&
                          !next.text.startsWith(QStringLiteral("I'"));
        length += addressed.contains(next.lower()) || name ? 1 : 0;
    }
    return length;
}

/// The place of the verb in "can you VERB ..."; 0 for other sentences.
std::size_t requestVerbAfterYou(const Sentence &sentence, std::size_t start) {
    static const QStringList modals{QStringLiteral("can"), QStringLiteral("could"), QStringLiteral("would"),
                                    QStringLiteral("will")};
    const bool asks =
        modals.contains(lowerAt(sentence, start)) && lowerAt(sentence, start + 1) == QStringLiteral("you");
    std::size_t verb = start + 2;
    while (lowerAt(sentence, verb) == QStringLiteral("please") || words::isFiller(lowerAt(sentence, verb))) {
        ++verb;
    }
    return asks && words::isRequestVerb(lowerAt(sentence, verb)) ? verb : 0;
}

void insertWord(Sentence &sentence, std::size_t at, const QString &text) {
    sentence.insert(sentence.begin() + static_cast<std::ptrdiff_t>(at), plainWord(text));
}

void eraseWords(Sentence &sentence, std::size_t from, std::size_t count) {
    const auto first = sentence.begin() + static_cast<std::ptrdiff_t>(from);
    sentence.erase(first, first + static_cast<std::ptrdiff_t>(count));
}

void lowerFirst(Sentence &sentence, std::size_t at) {
    if (at < sentence.size() && sentence[at].plain && words::isRequestVerb(sentence[at].lower())) {
        sentence[at].text = sentence[at].lower();
    }
}

void askPolitely(Sentence &sentence) {
    const std::size_t start = greetingLength(sentence);
    if (contains(sentence, QStringLiteral("please"))) {
        return;
    }
    if (requestVerbAfterYou(sentence, start) != 0) {
        insertWord(sentence, start + 2, QStringLiteral("please"));
    } else if (words::isRequestVerb(lowerAt(sentence, start))) {
        lowerFirst(sentence, start);
        insertWord(sentence, start, QStringLiteral("please"));
    }
}

void replaceWords(Sentence &sentence, const QHash<QString, QString> &table) {
    for (Word &word : sentence) {
        const auto found = table.constFind(word.lower());
        if (word.plain && found != table.constEnd()) {
            word.text = *found;
        }
    }
}

void makeProfessional(Sentence &sentence) {
    replaceWords(sentence, {{QStringLiteral("thanks"), QStringLiteral("thank you")},
                            {QStringLiteral("hey"), QStringLiteral("hello")},
                            {QStringLiteral("yeah"), QStringLiteral("yes")},
                            {QStringLiteral("guys"), QStringLiteral("all")}});
    askPolitely(sentence);
}

void makeFriendly(Sentence &sentence) {
    replaceWords(sentence, {{QStringLiteral("hello"), QStringLiteral("hi")}});
    const std::size_t greeting = greetingLength(sentence);
    if (greeting == 1 && sentence.size() > 1) {
        insertWord(sentence, 1, QStringLiteral("there"));
        std::swap(sentence[0].after, sentence[1].after);
    }
    askPolitely(sentence);
}

void makeConcise(Sentence &sentence) {
    static const QStringList wondering{QStringLiteral("i"),  QStringLiteral("was"), QStringLiteral("wondering"),
                                       QStringLiteral("if"), QStringLiteral("you"), QStringLiteral("could")};
    std::erase_if(sentence, [](const Word &word) { return words::isFiller(word.lower()) && word.after.isEmpty(); });
    const std::size_t greeting = greetingLength(sentence);
    const bool named = greeting > 0 && sentence[greeting - 1].text[0].isUpper() && greeting > 1;
    if (greeting > 0 && greeting < sentence.size() && !named) {
        eraseWords(sentence, 0, greeting);
    }
    const std::size_t start = named ? greeting : 0;
    if (matches(sentence, start, wondering)) {
        eraseWords(sentence, start, static_cast<std::size_t>(wondering.size()));
        insertWord(sentence, start, QStringLiteral("please"));
    } else if (const std::size_t verb = requestVerbAfterYou(sentence, start); verb != 0) {
        eraseWords(sentence, start, verb - start);
        insertWord(sentence, start, QStringLiteral("please"));
        sentence.back().after.replace(u'?', u'.');
    }
}

bool asksQuestion(const Sentence &sentence, std::size_t start) {
    const QString first = lowerAt(sentence, start);
    const QString second = lowerAt(sentence, start + 1);
    if (words::opensOnlyQuestions(first) || (words::isAuxiliary(first) && words::startsSubject(second))) {
        return true;
    }
    if (!words::isQuestionWord(first)) {
        return false;
    }
    // "When can I come" asks, "when I can come" does not; "what time do ..." has its verb a little later.
    const bool nounMayFollow = first != QStringLiteral("when") && first != QStringLiteral("why");
    for (std::size_t i = 1; i <= (nounMayFollow ? 3U : 1U); ++i) {
        const QString next = lowerAt(sentence, start + i);
        if (words::isAuxiliary(next)) {
            return true;
        }
    }
    return first == QStringLiteral("what's") ||
           (first == QStringLiteral("how") && (second == QStringLiteral("much") || second == QStringLiteral("many")));
}

/// The last clause decides: "The order is wrong, can you refund me?"
bool endsInQuestion(const Sentence &sentence, std::size_t start) {
    for (std::size_t i = start + 1; i < sentence.size(); ++i) {
        start = sentence[i - 1].after.contains(u',') ? i : start;
    }
    return asksQuestion(sentence, start);
}

/// Emoji, links and other scripts close a sentence without a mark.
bool takesMark(const Word &word) {
    const auto inEnglish = [](QChar c) { return c.unicode() < 0x80 && c.isLetterOrNumber(); };
    return word.plain || std::all_of(word.text.begin(), word.text.end(), inEnglish);
}

void addEndMark(Sentence &sentence, bool question, bool exclaim) {
    static const QRegularExpression repeated(QStringLiteral("([?!,])[?!,]+"));
    const auto last = std::find_if(sentence.rbegin(), sentence.rend(), takesMark);
    Word &end = last != sentence.rend() && question ? *last : sentence.back();
    end.after.replace(repeated, QStringLiteral("\\1"));
    if (question && end.after == QStringLiteral(".")) {
        end.after = QStringLiteral("?");
    } else if (!end.endsWithMark() && takesMark(end)) {
        end.after.prepend(question ? u'?' : exclaim ? u'!' : u'.');
    } else if (exclaim && end.after == QStringLiteral(".")) {
        end.after = QStringLiteral("!");
    }
}

} // namespace

std::vector<Sentence> splitOffThanks(const std::vector<Sentence> &sentences) {
    std::vector<Sentence> result;
    for (const Sentence &sentence : sentences) {
        const std::size_t size = sentence.size();
        const bool thanks = lowerAt(sentence, size - 1) == QStringLiteral("thanks");
        const bool thankYou = size > 1 && matches(sentence, size - 2, {QStringLiteral("thank"), QStringLiteral("you")});
        const std::size_t count = thanks ? 1 : thankYou ? 2 : 0;
        const std::size_t rest = size - count;
        if (count == 0 || rest < 3 || sentence[rest - 1].lower() == QStringLiteral("many") ||
            sentence[rest - 1].lower() == QStringLiteral("and")) {
            result.push_back(sentence);
            continue;
        }
        const auto middle = sentence.begin() + static_cast<std::ptrdiff_t>(rest);
        result.emplace_back(sentence.begin(), middle);
        result.back().back().after.remove(u',');
        result.emplace_back(middle, sentence.end());
    }
    return result;
}

void applyTone(Sentence &sentence, Tone tone) {
    switch (tone) {
    case Tone::professional:
        return makeProfessional(sentence);
    case Tone::friendly:
        return makeFriendly(sentence);
    case Tone::concise:
        return makeConcise(sentence);
    case Tone::grammarOnly:
        return;
    }
}

void punctuate(Sentence &sentence, Tone tone, bool endsText) {
    const std::size_t greeting = greetingLength(sentence);
    const bool friendly = tone == Tone::friendly;
    capitalise(sentence.front());
    if (greeting > 0 && greeting < sentence.size()) {
        Word &last = sentence[greeting - 1];
        if (!last.endsWithMark()) {
            last.after.prepend(friendly ? u'!' : u',');
        }
        if (last.endsSentence()) {
            capitalise(sentence[greeting]);
        }
    }
    if (greeting == sentence.size() && !endsText && !sentence.back().endsWithMark()) {
        sentence.back().after.prepend(friendly ? u'!' : u',');
        return;
    }
    const bool thanks = lowerAt(sentence, 0).startsWith(QStringLiteral("thank"));
    addEndMark(sentence, endsInQuestion(sentence, greeting), friendly && (thanks || greeting == sentence.size()));
}

} // namespace quillory::demo
