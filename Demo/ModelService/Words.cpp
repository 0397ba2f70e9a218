// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Words.h"

#include <QHash>
#include <QSet>
#include <QStringList>

namespace quillory::demo::words {

namespace {

using WordSet = QSet<QString>;

WordSet split(const char *text) {
    const QStringList list = QString::fromUtf8(text).split(u' ', Qt::SkipEmptyParts);
    return {list.begin(), list.end()};
}

/// "short=long form; short=long form"
QHash<QString, QString> splitPairs(const char *text) {
    QHash<QString, QString> result;
    for (const QString &pair : QString::fromUtf8(text).split(u';', Qt::SkipEmptyParts)) {
        const qsizetype equals = pair.indexOf(u'=');
        result.insert(pair.left(equals).trimmed(), pair.mid(equals + 1).trimmed());
    }
    return result;
}

} // namespace

std::optional<QString> writtenOut(const QString &word) {
    static const QHash<QString, QString> table = splitPairs(
        "u=you; ur=your; r=are; i=I; pls=please; plz=please; plss=please; pleas=please; thx=thanks; tnx=thanks;"
        "thnx=thanks; thanx=thanks; ty=thank you; asap=as soon as possible; btw=by the way; idk=I don't know;"
        "tmrw=tomorrow; tmr=tomorrow; 2moro=tomorrow; 2morrow=tomorrow; 2day=today; 2nite=tonight; b4=before;"
        "gr8=great; l8r=later; msg=message; msgs=messages; abt=about; bcz=because; bcoz=because; cuz=because;"
        "coz=because; hv=have; wat=what; wht=what; wen=when; whr=where; ppl=people; gud=good; alot=a lot;"
        "gonna=going to; wanna=want to; gotta=have to; gimme=give me; lemme=let me; cud=could; shud=should;"
        "wud=would; hru=how are you; addr=address; qty=quantity; helo=hello; hallo=hello; hii=hi; helloo=hello;"
        "cna=can; teh=the; hte=the; adn=and; yuo=you; waht=what; taht=that; yea=yes; yep=yes; w/=with;"
        "ok=OK; tv=TV;"
        "dont=don't; cant=can't; wont=won't; didnt=didn't; doesnt=doesn't; isnt=isn't; arent=aren't; wasnt=wasn't;"
        "havent=haven't; hasnt=hasn't; couldnt=couldn't; wouldnt=wouldn't; shouldnt=shouldn't; im=I'm; ive=I've;"
        "i'm=I'm; i've=I've; i'll=I'll; i'd=I'd; thats=that's; whats=what's; youre=you're; theyre=they're");
    const auto found = table.constFind(word);
    return found == table.constEnd() ? std::nullopt : std::optional(*found);
}

bool isCommon(const QString &word) {
    static const WordSet set = split(
        "a able about accept account add address after again all already also am an and another answer any anything "
        "are around arrive as ask at available away back bad be because been before best better big bill box bring "
        "business busy but buy by call came can cancel card cash catalog change charge check choose city clear close "
        "collect color come company confirm contact cost could customer customers date day days deal delay delayed "
        "deliver delivery deposit details did different discount do does done door down each early email end enough "
        "every exchange excuse expect expensive fast feel few find fine first for free friend from full get give go "
        "going good got great had half happy has have he hello help her here him his hold home hope hour hours house "
        "how if important in information interested into invoice is issue it item items just keep know large last "
        "late later leave left let like line list little local location long look looking lot made make many may "
        "maybe me meet meeting message messages mind minute minutes money month more morning most much must my name "
        "need never new next nice night no not now number of off offer office ok on once one online only open option "
        "or order orders other our out over own paid part pay payment people phone photo pick picture place please "
        "possible price prices problem product products quality quantity question questions quick quickly quote ready "
        "really reason receive received refund regarding reply request return right room sale same saturday say see "
        "sell send sent service she ship shipping shop short should show size small some something soon sorry "
        "start still stock stop store sure take talk tell than thank thanks that the their them then there these "
        "they thing think this those time to today together tomorrow tonight too total try two under understand "
        "until up update us use very visit wait want was way we week welcome well went were what when where which "
        "while who why will with without work working would write wrong year yes yesterday yet you your");
    return set.contains(word);
}

bool isGreeting(const QString &word) {
    static const WordSet set = split("hi hello hey dear greetings");
    return set.contains(word);
}

bool isRequestVerb(const QString &word) {
    static const WordSet set = split("send give call tell let share check confirm bring come reply show deliver make "
                                     "write ship pay update help forward email message book reserve cancel change "
                                     "keep wait look explain provide arrange add");
    return set.contains(word);
}

bool isAuxiliary(const QString &word) {
    static const WordSet set = split("can could would will should may shall do have has had");
    return set.contains(word) || opensOnlyQuestions(word);
}

bool opensOnlyQuestions(const QString &word) {
    static const WordSet set = split("is are was were does did am isn't aren't doesn't didn't");
    return set.contains(word);
}

bool isQuestionWord(const QString &word) {
    static const WordSet set = split("what where when who why how which whose what's");
    return set.contains(word);
}

bool startsSubject(const QString &word) {
    static const WordSet set = split("i you he she it we they this that these those there the my your our his her "
                                     "their any anyone someone");
    return set.contains(word);
}

bool isFiller(const QString &word) {
    static const WordSet set = split("just really very actually basically kindly simply literally");
    return set.contains(word);
}

} // namespace quillory::demo::words
