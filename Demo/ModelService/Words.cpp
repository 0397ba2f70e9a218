// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Words.h"

#include <QHash>
#include <QSet>
#include <QStringList>

namespace quillory::demo::words {

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

} // namespace quillory::demo::words
