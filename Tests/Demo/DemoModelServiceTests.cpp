// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Replier.h"
#include "ModelService/Rewriter.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace quillory::demo {
namespace {

struct Case {
    const char *draft;
    const char *rewrite;
};

void expectAll(Tone tone, std::initializer_list<Case> cases) {
    const Rewriter rewriter;
    for (const Case &c : cases) {
        EXPECT_EQ(rewriter.rewrite(QString::fromUtf8(c.draft), tone).toStdString(), c.rewrite) << c.draft;
    }
}

TEST(DemoRewriter, MakesDraftsProfessional) {
    expectAll(Tone::professional,
              {{"hi ahmed i cant come tmrw becuase im sick", "Hi Ahmed, I can't come tomorrow because I'm sick."},
               {"pls confirm ur adress and phone nubmer", "Please confirm your address and phone number."},
               {"what time do u open on friday??", "What time do you open on Friday?"},
               {"i recieved teh wrong oder, can you refund me", "I received the wrong order, can you refund me?"},
               {"i want 2 cakes can u deliver today", "I want 2 cakes. Can you please deliver today?"},
               {"sorry we dont have size m,do u want l", "Sorry, we don't have size m, do you want l?"},
               {"We deliver 10–12 boxes — free", "We deliver 10 to 12 boxes, free."}});
}

TEST(DemoRewriter, KeepsWhatIsNotItsBusiness) {
    expectAll(Tone::professional, {{"مرحبا كم السعر", "مرحبا كم السعر"},
                                   {"hola necesito el precio por favor", "hola necesito el precio por favor"},
                                   {"hi كم السعر pls", "Hi, كم السعر please."},
                                   {"can u send it 🙏", "Can you please send it? 🙏"},
                                   {"see https://example.com/a.html pls", "See https://example.com/a.html please."},
                                   {"do you have this in size 42", "Do you have this in size 42?"},
                                   {"send it to yousef in riffa", "Please send it to yousef in riffa."},
                                   {"dear sir\n\ni want\n- red boxes\n- blue ones\nthx",
                                    "Dear sir,\n\nI want:\n- red boxes\n- blue ones\nThank you."},
                                   {"call me :)", "Please call me :)"},
                                   {"  \n ", ""},
                                   {"?!", "?!"}});
}

TEST(DemoRewriter, HeedsTheTone) {
    const char *draft = "helo can u just send me the price list";
    expectAll(Tone::friendly, {{draft, "Hi there! Can you please just send me the price list?"}});
    expectAll(Tone::concise, {{draft, "Please send me the price list."}});
    expectAll(Tone::grammarOnly, {{draft, "Hello, can you just send me the price list?"}});
}

TEST(DemoReplier, AnswersFromWhatItKnows) {
    const QString knowledge = u"Q: Do you deliver?\nA: Yes, to\nRiffa.\n\nQ: Opening hours on Friday?\nA: "
                              "From 2."_s;
    const std::pair<const char *, const char *> cases[]{
        {"«customer» Hello\n«customer» are you delivering to Riffa?", "Yes, to\nRiffa."},
        {"«customer» do you deliver?\n«you» Yes.\n«customer» and on friday, when do you open", "From 2."},
        {"«customer» do you deliver?\n«you» Yes.", "SKIP"},
        {"«customer» Thank you!", "SKIP"},
        {"«customer» Do you sell bread?", "Let me check that and get back to you shortly."},
        {"", "SKIP"}};
    for (const auto &[conversation, reply] : cases) {
        EXPECT_EQ(replyTo(QString::fromUtf8(conversation), knowledge).toStdString(), reply) << conversation;
    }
}

} // namespace
} // namespace quillory::demo
