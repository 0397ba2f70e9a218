// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Rewriter.h"

#include <QRegularExpression>
#include <QStringList>

#include <utility>
#include <vector>

namespace quillory::demo {

using namespace Qt::StringLiterals;

namespace {

/// A pattern that ignores case except within "(?-i:)". A name in braces stands for a list of words.
QRegularExpression rule(QString pattern) {
    static const std::pair<QString, QString> lists[]{
        {u"{verb}"_s,
         uR"((?:send|give|call|tell|let(?!')|share|check|confirm|bring|come|reply|show|deliver|make|write|ship|)"
         uR"(pay|update|help|forward|email|message|book|reserve|cancel|change|keep|wait|look|explain|)"
         uR"(provide|arrange|add)\b(?! (?:is|was|are|has|will|not|received|sent)\b))"_s},
        {u"{filler}"_s, u"(?:just|really|very|actually|basically|kindly|simply|literally)"_s},
        {u"{asks}"_s, u"(?:can|could|do|are|will|would) you"_s},
        {u"{be}"_s, u"(?:(?:is|are|was|were|does|did)(?:n't)?|am)"_s},
        {u"{aux}"_s, u"(?:can(?:'t)?|won't|don't|(?:could|would|should|has|have|had)(?:n't)?|will|may|shall|do)"_s},
        {u"{subject}"_s,
         u"(?:i|you|he|she|it|we|they|this|that|these|those|there|the|my|your|our|his|her|their|any)"_s}};
    for (const auto &[name, list] : lists) {
        pattern.replace(name, list);
    }
    return QRegularExpression(pattern, QRegularExpression::CaseInsensitiveOption);
}

struct Change {
    QRegularExpression pattern;
    QString after;
};

/// From lines of the form "pattern => replacement", or "pattern =>" for what is dropped.
std::vector<Change> changesOf(const QString &table) {
    std::vector<Change> changes;
    for (const QString &line : table.split(u'\n', Qt::SkipEmptyParts)) {
        changes.push_back({rule(line.section(u" =>"_s, 0, 0)), line.section(u" =>"_s, 1).mid(1)});
    }
    return changes;
}

QString changed(QString text, const std::vector<Change> &changes) {
    for (const Change &change : changes) {
        text.replace(change.pattern, change.after);
    }
    return text;
}

/// With the first letter in upper case, past a quotation mark or an emoji, unless its word has capitals of its own.
QString capitalised(QString text) {
    static const QRegularExpression first(uR"(^["'(\s\p{So}]*\K[a-z](?=[a-z']*(?![A-Za-z])))"_s);
    const auto found = first.match(text);
    return found.hasMatch() ? text.replace(found.capturedStart(), 1, found.captured().toUpper()) : text;
}

/// Takes links, addresses and emoticons out of a text: a character that no rule takes for a word stands in for each.
class Keepsakes {
  public:
    explicit Keepsakes(QString &text) {
        static const QRegularExpression kept(
            uR"((?<!\S)(?:[:;=]-?[)(DP](?!\S)|(?:\S*(?:://|[@#])|www\.|[\w-]+(?:\.[\w-]+)*\.[a-z]{2,}(?=/|[.,!?]*(?!\S))))"
            uR"(\S*?(?=[.,;:!?…]*(?!\S))))"_s);
        for (auto found = kept.match(text); found.hasMatch(); found = kept.match(text)) {
            text.replace(found.capturedStart(), found.capturedLength(), standIn(m_kept.size()));
            m_kept.append(found.captured());
        }
    }
    [[nodiscard]] QString restored(QString text) const {
        for (qsizetype i = 0; i < m_kept.size(); ++i) {
            text.replace(standIn(i), m_kept[i]);
        }
        return text;
    }

  private:
    static QChar standIn(qsizetype index) { return {static_cast<char16_t>(0xE000 + index)}; }

    QStringList m_kept;
};

/// With spaces, apostrophes and dashes as people write them in chats: "10–12" is "10 to 12", and any other dash a
/// comma.
QString tidied(const QString &line) {
    static const auto changes = changesOf(uR"(
’ => '
(\d)\s*[–—]\s*(\d) => \1 to \2
(\S)\s*[–—]\s*(\S) => \1, \2
\bw/(?= ) => with
\s+(?=[,.!?…]+(?:\s|$)) =>
(?<=[a-z])([,!?])([a-z]) => \1 \2
)"_s);
    return changed(line.simplified(), changes);
}

/// Corrects what only the words around it give away.
QString withGrammarCorrected(const QString &line) {
    static const auto changes = changesOf(uR"(
\b(the|a|to|you|and|is|of|I) \1\b => \1
\b4(?= (?:you|me|us)\b) => for
\b(y)our(?= (?:welcome|right|late|coming|going|not|the best)\b) => \1ou're
\b(i)ts(?= (?:an?|the|not|OK|okay|fine|too|very|so|been|for|in|on|at|still|really|just|good|great|wrong|late)\b) => \1t's
\b(i)ts(?= (?:broken|available|free|possible|urgent|important)\b) => \1t's
\bill(?= (?:be|come|send|call|pay|take|wait|let|get|go|check|see|do|have|try|tell|ask|order|need)\b) => I'll
\b(l)ets(?= (?:go|meet|do|see|talk|try|say|start|make)\b) => \1et's
\b(he|she|it) don't\b => \1 doesn't
\b(could|should|would) of\b => \1 have
\ba(?= (?:address|answer|apple|email|hour|invoice|issue|item|offer|old|order|other|update)\b) => an
^(thanks|thank you|OK|yes|no|sorry)(?= (?:i|we|it|he|she|they|that|this|the|please|can|could|do)\b) => \1,
)"_s);
    return changed(line, changes);
}

/// The sentences of a line. Thanks at the end, and a question that follows a statement without a comma, become
/// sentences of their own.
QStringList sentencesOf(const QString &line) {
    static const QRegularExpression end(uR"((?<=[.!?…])(?<!\b[A-Z]r\.|\bMrs\.|\.[a-z]\.)\s+)"_s);
    static const auto runOns = changesOf(uR"(
((?:\S+\s+){2,}\S*[^\s,.!?])(?<!\bmany|\band|\bsay),?\s+(thanks|thank you(?: so much)?)(\W*)$ => \1. \2\3
^(?!.*\b(?:wh[aeioy]\w*|how|if)\b)(?=.*\b(?:i|we|it|my|the)\b.* {asks} \w)((?:\S+\s+){3,}?\S*[^\s,.!?])(?<!\band|\bor|\bbut|\bso)\s+({asks} \w.*)$ => \1. \2
)"_s);
    QStringList sentences;
    for (const QString &sentence : line.split(end)) {
        sentences += changed(sentence, runOns).split(end);
    }
    return sentences;
}

/// A sentence in three: "Hi Ahmed", the marks after it, and what follows.
struct Sentence {
    QString greeting;
    QString marks;
    QString body;
};

Sentence parsed(const QString &text) {
    static const QRegularExpression greeting = rule(
        uR"(^((?:good (?:morning|afternoon|evening)|hi|hello|hey|dear|greetings)\b(?: (?:there|sir|madam|all|everyone|team|)"
        uR"(dear|again|guys|customer|friend|(?-i:(?!I\b)[A-Z][a-z]+))\b)?)([,.!?…]*)(?:\s+|$)(.*)$)"_s);
    const auto found = greeting.match(text);
    return found.hasMatch() ? Sentence{found.captured(1), found.captured(2).left(1), found.captured(3)}
                            : Sentence{{}, {}, text};
}

QString askedPolitely(const QString &body) {
    static const QRegularExpression order = rule(u"^(?!.*\\bplease\\b){verb}"_s);
    static const auto question =
        changesOf(uR"(^(?!.*\bplease\b)((?:can|could|would|will) you) (?=(?:{filler} )*{verb}) => \1 please )"_s);
    return body.contains(order) ? u"please "_s + body[0].toLower() + body.sliced(1) : changed(body, question);
}

void applyTone(Sentence &sentence, Tone tone) {
    static const auto formal = changesOf(uR"(
(?<!many )\b(t)hanks\b(?! (?:a lot|again)) => \1hank you
\byeah\b => yes
\bguys\b => all
^hey\b => Hello
)"_s);
    static const auto brief = changesOf(uR"(
\b{filler} (?=\w) =>
^i was wondering if you could(?: please)? => please
^(?:can|could|would|will) you (?:please )?(?={verb})(.*?)[?]*$ => please \1
)"_s);
    static const auto warm = changesOf(u"^hello\\b => hi\n^(hi|hey)$ => \\1 there"_s);
    static const QRegularExpression name(u" [A-Z]"_s);
    if (tone == Tone::professional) {
        sentence.greeting = changed(sentence.greeting, formal);
        sentence.body = askedPolitely(changed(sentence.body, formal));
    } else if (tone == Tone::friendly) {
        sentence.greeting = changed(sentence.greeting, warm);
        sentence.body = askedPolitely(sentence.body);
    } else if (tone == Tone::concise) {
        if (!sentence.body.isEmpty() && !sentence.greeting.contains(name)) {
            sentence.greeting.clear();
        }
        sentence.body = changed(sentence.body, brief);
    }
}

/// The last clause decides: "The order is wrong, can you refund me?" "When can I come" asks, "when I can come" does
/// not.
bool isQuestion(const QString &body) {
    static const QRegularExpression opening =
        rule(uR"(^(?:(?:and|but|so|or|OK) )?(?:{be}|{aux} {subject}|(?:what|where|who|how)'s|what about|)"
             uR"(how (?:much|many|long|far|about|come)|(?:what|where|who|how|which|whose)(?: \S+){0,2} (?:{be}|{aux})|)"
             uR"((?:when|why) (?:{be}|{aux})|any (?:update|news|discount|offer|chance|idea)s?)\b)"_s);
    return body.section(u',', -1).trimmed().contains(opening);
}

/// The text with a mark at its end. An emoji, a link or another script ends a text without one.
QString ended(const QString &text, QChar mark) {
    static const QRegularExpression parts(uR"(^(.*[A-Za-z0-9"'%)\]])([\s.,!?;:…]*)(.*)$)"_s);
    static const QRegularExpression kept(u"^(?:[.]{2}|[:;…]|[!?])"_s);
    const auto found = parts.match(text);
    const QString rest = found.captured(3);
    if (!found.hasMatch() || (!rest.isEmpty() && mark != u'?')) {
        return text;
    }
    const QString stood = found.captured(2).trimmed();
    const bool isSingle = stood.startsWith(u'!') || stood.startsWith(u'?');
    const QString marks = stood.contains(kept) ? (isSingle ? stood.left(1) : stood) : QString(mark);
    return found.captured(1) + marks + (rest.isEmpty() ? QString() : u' ' + rest);
}

/// The comma after a greeting, capitals, and the mark at the end. lastMark: what ends a text that is no question.
QString punctuated(const Sentence &sentence, Tone tone, QChar lastMark) {
    const bool isFriendly = tone == Tone::friendly;
    const QString greeting = capitalised(sentence.greeting);
    if (sentence.body.isEmpty()) {
        return greeting + (sentence.marks.isEmpty() ? QString(isFriendly ? u'!' : lastMark) : sentence.marks);
    }
    const bool isThanks = isFriendly && sentence.body.startsWith(u"thank"_s, Qt::CaseInsensitive);
    const QString body = ended(sentence.body, isQuestion(sentence.body) ? u'?' : isThanks ? u'!' : lastMark);
    if (greeting.isEmpty()) {
        return capitalised(body);
    }
    const QString marks = sentence.marks.isEmpty() ? QString(isFriendly ? u'!' : u',') : sentence.marks;
    return greeting + marks + u' ' + (marks == u"," ? body : capitalised(body));
}

bool isListItem(const QString &line) {
    static const QRegularExpression item(uR"(^\s*([-*•]|\d+[.)])\s)"_s);
    return line.contains(item);
}

/// A word that the rules may change: English letters, with digits among them at most ("gr8"), and no other script.
const QRegularExpression &wordPattern() {
    static const QRegularExpression pattern(
        uR"((?<![\p{L}\p{M}\p{N}_'-])[A-Za-z0-9]+(?:['-][A-Za-z0-9]+)*(?![\p{L}\p{M}\p{N}_]))"_s);
    return pattern;
}

} // namespace

QString Rewriter::rewrite(const QString &draft, Tone tone) const {
    const QStringList lines = draft.trimmed().split(u'\n');
    QStringList result;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QString line = lines[i];
        const Keepsakes keepsakes(line);
        if (isOtherLanguage(line)) {
            result << lines[i].trimmed();
            continue;
        }
        QStringList sentences = sentencesOf(withGrammarCorrected(withWordsCorrected(tidied(line))));
        for (QString &text : sentences) {
            if (isListItem(line)) {
                continue;
            }
            Sentence sentence = parsed(text);
            applyTone(sentence, tone);
            const bool isFollowed = &text == &sentences.back() && i + 1 < lines.size();
            const QChar greetingMark = sentence.body.isEmpty() ? u',' : u'.';
            text = punctuated(sentence, tone, !isFollowed ? u'.' : isListItem(lines[i + 1]) ? u':' : greetingMark);
        }
        result << keepsakes.restored(sentences.join(u' '));
    }
    return result.join(u'\n');
}

/// Where most words are not English, however they are spelt, the speller would only do harm.
bool Rewriter::isOtherLanguage(const QString &line) const {
    int balance = 0;
    for (auto matches = wordPattern().globalMatch(line); matches.hasNext();) {
        const QString word = matches.next().captured().toLower();
        const bool isEnglish = writtenOut(word) || m_speller.knows(word) || isCommon(m_speller.corrected(word));
        balance += isEnglish ? 1 : -1;
    }
    return balance <= 0;
}

QString Rewriter::withWordsCorrected(const QString &line) const {
    static const QRegularExpression greeting = rule(u"\\b(hi|hello|hey|dear)$"_s);
    QString result;
    qsizetype end = 0;
    for (auto matches = wordPattern().globalMatch(line); matches.hasNext();) {
        const auto match = matches.next();
        result += line.mid(end, match.capturedStart() - end);
        result += correctedWord(match.captured(), result.trimmed().contains(greeting));
        end = match.capturedEnd();
    }
    return result + line.mid(end);
}

QString Rewriter::correctedWord(const QString &word, bool followsGreeting) const {
    static const QRegularExpression digitOrHyphen(u"[0-9-]"_s);
    const QString lower = word.toLower();
    if (const auto written = writtenOut(lower)) {
        return word[0].isUpper() ? capitalised(*written) : *written;
    }
    if (word.contains(digitOrHyphen) || m_speller.knows(word)) {
        return word;
    }
    const QString corrected = m_speller.corrected(lower);
    if (word == lower) {
        return followsGreeting && !isCommon(corrected) ? capitalised(word) : corrected;
    }
    // A capital may begin a name: only a misspelling of an everyday word is certain to be one.
    const bool isCertain = isCommon(corrected) && word.sliced(1) == lower.sliced(1);
    return isCertain ? capitalised(corrected) : word;
}

} // namespace quillory::demo
