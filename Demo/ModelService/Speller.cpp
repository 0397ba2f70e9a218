// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Speller.h"

#include <QFile>
#include <QHash>
#include <QSet>
#include <QStringList>

#include <hunspell/hunspell.hxx>

#include <algorithm>
#include <stdexcept>

namespace quillory::demo {

using namespace Qt::StringLiterals;

namespace {

/// "full form: short, short; full form: short"
QHash<QString, QString> tableOf(const QString &text) {
    QHash<QString, QString> table;
    for (const QString &entry : text.split(u"; "_s)) {
        for (const QString &shortForm : entry.section(u": "_s, 1).split(u", "_s)) {
            table.insert(shortForm, entry.section(u": "_s, 0, 0));
        }
    }
    return table;
}

constexpr qsizetype plausibleScore = 20;

/// The length of the stretch in which two words differ. Two letters that changed places count as one.
qsizetype difference(const QString &a, const QString &b) {
    const qsizetype shorter = std::min(a.size(), b.size());
    const auto prefix = std::mismatch(a.begin(), a.begin() + shorter, b.begin()).first - a.begin();
    const auto suffix = std::mismatch(a.rbegin(), a.rend() - prefix, b.rbegin(), b.rend() - prefix).first - a.rbegin();
    const qsizetype differing = std::max(a.size(), b.size()) - prefix - suffix;
    return differing == 2 && std::is_permutation(a.begin(), a.end(), b.begin(), b.end()) ? 1 : differing;
}

/// Lower is better; above the plausible score the candidate is no correction.
qsizetype score(const QString &word, const QString &candidate) {
    if (candidate.compare(word, Qt::CaseInsensitive) == 0) {
        return 5; // "friday"
    }
    const qsizetype differing = difference(word, candidate);
    const bool isFrequent = isCommon(candidate);
    const bool isTooFar = differing > (word.size() >= 7 ? 3 : word.size() >= 5 ? 2 : 1);
    if (isTooFar || (word.size() <= 5 && !isFrequent) || candidate.contains(u' ') || candidate.contains(u'-')) {
        return plausibleScore + 1;
    }
    // A letter is forgotten more often than added, and the first one is seldom wrong.
    return differing * 6 + (candidate.size() < word.size() ? 1 : 0) + (word[0] == candidate[0] ? 0 : 5) -
           (isFrequent ? 6 : 0);
}

} // namespace

std::optional<QString> writtenOut(const QString &word) {
    static const QHash<QString, QString> table = tableOf(
        u"you: u, yu, yuo; your: ur; are: r; I: i; why: y; and: n, nd, adn; see you: cya; please: pls, plz, plss, "
        u"plez, "
        "pleas; thanks: thx, tnx, thnx, thanx, tks; thank you: ty; thank you so much: tysm; no problem: np; "
        "as soon as possible: asap; by the way: btw; let me know: lmk; I don't know: idk; never mind: nvm; "
        "on my way: omw; right now: rn; how are you: hru; tomorrow: tmrw, tmr, tmw, tom, 2moro, 2morrow, tomoro; "
        "today: 2day, tday; tonight: 2nite, tonite; before: b4; great: gr8; later: l8r; late: l8; wait: w8; "
        "message: msg; messages: msgs; about: abt; because: bcz, bcoz, becoz, bc, cuz, coz, cos; have: hv, hav; "
        "what: wat, wht, wut, waht; when: wen; where: whr, wer; with: wid, wth; want: wnt; people: ppl; good: gud; "
        "a lot: alot; a bit: abit; how: hw; going to: gonna; want to: wanna; have to: gotta; give me: gimme; let me: "
        "lemme; could: cud; "
        "should: shud; would: wud; can: cn, cna; address: addr; quantity: qty; hello: helo, hallo, helloo, hlo, hllo; "
        "hi: hii, hiii; the: teh, hte, da; that: taht, tht; this: ths, dis; from: frm; for: fr; though: tho; "
        "birthday: bday; yes: yea, yep, ya, yup; sorry: sry, srry; okay: okey; OK: ok, k, okk; "
        "TV: tv; don't: dont; can't: cant; won't: wont; didn't: didnt; doesn't: doesnt; isn't: isnt, aint; "
        "aren't: arent; wasn't: wasnt; weren't: werent; haven't: havent; hasn't: hasnt; hadn't: hadnt; "
        "couldn't: couldnt; wouldn't: wouldnt; shouldn't: shouldnt; I'm: im, i'm; I've: ive, i've; I'll: i'll; "
        "I'd: i'd; that's: thats; what's: whats; who's: whos; where's: wheres; how's: hows; there's: theres; "
        "he's: hes; she's: shes; you're: youre; you've: youve; you'll: youll; they're: theyre; we've: weve; "
        "could have: couldve; should have: shouldve; would have: wouldve"_s);
    const auto found = table.constFind(word);
    return found == table.constEnd() ? std::nullopt : std::optional(*found);
}

bool isCommon(const QString &word) {
    static const QStringList list =
        QString::fromLatin1(
            "able about accept account add address after again all already also and another answer any anything "
            "are around arrive arrived ask available away back bad because been before best better big birthday "
            "boxes breakfast broken business busy but buy cake call came can cancel card change charge cheap "
            "check choose close collect color come coming company confirm contact cost could customer customers "
            "date day days deal delay delayed deliver delivered delivery deposit details did different dinner "
            "discount does doing done door down driver each early email end enough evening every everyone "
            "everything except exchange expect expensive fast find first for found free friday friend from "
            "funny get gift give going good great guys had happy has have hello help her here home hope hour "
            "hours house how important information interested into invoice issue item items just keep know "
            "large last late later leave left let like list little location long looking make many may maybe "
            "meant meet meeting message messages minute minutes monday money month more morning most much name "
            "need never new next night not nothing now number off offer office one online only open order "
            "ordered orders other others our out own packed paid pay paying payment people phone photo pick "
            "picture place please possible price prices problem product products quality quantity question "
            "questions quickly quote ready really reason receipt receive received refund regarding remember "
            "reply request return right sale same saturday say see send sending sent service she ship shipping "
            "short should show size small some something soon sorry still stock stop sunday sure take taken "
            "talk talking tell than thank thanks that the their them then there these they think thinking this "
            "those thursday time today together tomorrow tonight too total transfer try trying tuesday two "
            "under understand until update urgent use very visit wait waiting want wanted was way wednesday "
            "week weekend weeks welcome well went were what when where which while who whole why will with "
            "without wonder work working would write wrong yes yesterday you your")
            .split(u' ');
    static const QSet<QString> set(list.begin(), list.end());
    return set.contains(word);
}

Speller::Speller() {
    const std::string base = "/usr/share/hunspell/en_US";
    if (!QFile::exists(QString::fromStdString(base + ".dic"))) {
        throw std::runtime_error("no American English dictionary (package hunspell-en-us)");
    }
    m_dictionary = std::make_unique<Hunspell>((base + ".aff").c_str(), (base + ".dic").c_str());
}

Speller::~Speller() = default;

bool Speller::knows(const QString &word) const {
    return m_dictionary->spell(word.toStdString());
}

QString Speller::corrected(const QString &word) const {
    if (word.size() < 3 || knows(word)) {
        return word;
    }
    QString best = word;
    qsizetype bestScore = plausibleScore + 1;
    for (const std::string &suggestion : m_dictionary->suggest(word.toStdString())) {
        const QString candidate = QString::fromStdString(suggestion);
        if (const qsizetype candidateScore = score(word, candidate); candidateScore < bestScore) {
            best = candidate;
            bestScore = candidateScore;
        }
    }
    return best;
}

} // namespace quillory::demo
