// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Monitor/AnswerScreening.h"
#include "Quillory/Monitor/DraftRules.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace quillory {
namespace {

using Outcome = Verdict::Outcome;

QString text(const char *utf8) {
    return QString::fromUtf8(utf8);
}

QString letters(qsizetype count) {
    return QString(count, u'x');
}

TEST(DraftRules, NormalisesWhiteSpaceAlone) {
    for (const auto &[raw, expected] :
         std::vector<std::pair<const char *, const char *>>{{"  Hello\u00A0 world\n", "Hello world"},
                                                            {" \n\t\u2028", ""},
                                                            {"a\r\n\u0085b 😀\u2028c", "a b 😀 c"},
                                                            {"a-b", "a-b"}}) {
        EXPECT_EQ(normalized(text(raw)), text(expected));
    }
}

TEST(DraftRules, KnowAnEmptyFieldByItsPlaceholder) {
    const QString hint = u"Type a message"_s;
    EXPECT_TRUE(isEmptyField(u" \n\u00A0"_s, {}));
    EXPECT_TRUE(isEmptyField(hint, hint));
    EXPECT_TRUE(isEmptyField(hint + u'\n', hint));
    EXPECT_FALSE(isEmptyField(hint + u"\n\n"_s, hint));
    EXPECT_FALSE(isEmptyField(hint, {}));
}

TEST(DraftRules, CountCharactersAsPeopleSeeThem) {
    const DraftGates gates{.minChars = 8, .maxChars = 12, .lastInserted = {}, .secondsSinceInsert = 1e9};
    for (const auto &[draft, allowed] : std::vector<std::pair<QString, bool>>{
             {letters(7), false},
             {letters(8), true},
             {u"  "_s + letters(7) + u'\n', false},
             {letters(12), true},
             {letters(13), false},
             {letters(8) + u"     "_s, false},
             {u"👋🏽"_s.repeated(7), false},
             {u"👋🏽"_s.repeated(8), true},
             {u"👋🏽"_s.repeated(12), true},
             {u"👋🏽"_s.repeated(13), false},
         }) {
        EXPECT_EQ(mayRewrite(draft, gates), allowed) << draft.toStdString();
    }
    EXPECT_FALSE(mayRewrite(u"Good\u00A0day, Amal "_s,
                            {.maxChars = 99, .lastInserted = u"Good day,  Amal"_s, .secondsSinceInsert = 9}));
    EXPECT_FALSE(mayRewrite(letters(8), {.maxChars = 99, .lastInserted = {}, .secondsSinceInsert = 2.0}));
    EXPECT_TRUE(mayRewrite(letters(8), {.maxChars = 99, .lastInserted = {}, .secondsSinceInsert = 2.01}));
}

TEST(DraftRules, StartRequestsALittleBeforeThePauseEnds) {
    struct Case {
        double idle;
        qint64 debounceMs;
        PausePhase phase;
    };
    for (const auto &[idle, debounceMs, phase] : std::vector<Case>{
             {0.24, 500, PausePhase::wait},
             {0.25, 500, PausePhase::prefetch},
             {0.49, 500, PausePhase::prefetch},
             {0.5, 500, PausePhase::show},
             {0.19, 450, PausePhase::wait},
             {0.2, 300, PausePhase::prefetch},
             {0.19, 200, PausePhase::wait},
             {0.2, 200, PausePhase::show},
             {0, 0, PausePhase::show},
             {1.7, 2000, PausePhase::wait},
         }) {
        EXPECT_EQ(pausePhase(idle, debounceMs), phase) << idle << " of " << debounceMs;
    }
}

TEST(AnswerScreening, JudgesRewritesByTheirLength) {
    const auto outcome = [](qsizetype draft, qsizetype answer) {
        return screen(SuggestionKind::rewrite, letters(draft), letters(answer));
    };
    EXPECT_EQ(outcome(40, 120).outcome, Outcome::accepted);
    EXPECT_EQ(outcome(39, 500).outcome, Outcome::accepted);
    EXPECT_EQ(outcome(40, 121),
              (Verdict{Outcome::rejected, u"121 chars for a 40-char draft (answered instead of rewriting)"_s}));
    EXPECT_EQ(screen(SuggestionKind::rewrite, letters(60), u"SKIP"_s).outcome, Outcome::accepted);
    EXPECT_EQ(screen(SuggestionKind::rewrite, u"👋🏽"_s.repeated(39), letters(500)).outcome, Outcome::accepted);
}

TEST(AnswerScreening, JudgesRepliesByLengthAndByTheWordSkip) {
    const auto outcome = [](const QString &answer) { return screen(SuggestionKind::reply, letters(10), answer); };
    EXPECT_EQ(outcome(letters(1200)).outcome, Outcome::accepted);
    EXPECT_EQ(outcome(letters(1201)), (Verdict{Outcome::rejected, u"reply too long (1201 chars)"_s}));
    for (const char *skip : {"SKIP", "Skip.", " **SKIP** ", "\t¡skip!"}) {
        EXPECT_EQ(outcome(text(skip)).outcome, Outcome::skipped) << skip;
    }
    EXPECT_EQ(outcome(u"SKIP for now"_s).outcome, Outcome::accepted);
    EXPECT_EQ(outcome({}).outcome, Outcome::accepted);
}

TEST(AnswerScreening, CleansAnswersAndNamesModels) {
    EXPECT_EQ(cleanedAnswer(u"<draft>Hello there</draft>\n"_s), u"Hello there"_s);
    EXPECT_EQ(cleanedAnswer(u"<<draft>conversation>a</conversation> <Draft>"_s), u"a <Draft>"_s);
    EXPECT_TRUE(isUnchanged(u" caf\u00E9\n"_s, u"cafe\u0301"_s));
    EXPECT_TRUE(isUnchanged(u"draft"_s, {}));
    EXPECT_FALSE(isUnchanged(u"draft"_s, u"Draft"_s));
    for (const auto &[identifier, label] : std::vector<std::pair<const char *, const char *>>{
             {"anthropic/claude-haiku-4.5", "Claude Haiku 4.5"},
             {"google/gemini-2.5-flash-lite", "Gemini 2.5 Flash Lite"},
             {"claude-haiku-4.5", "Claude Haiku 4.5"},
             {"a//straße-ßx--é/", "Straße SSx É"},
             {"/", "/"},
             {"", ""},
         }) {
        EXPECT_EQ(prettyModelName(text(identifier)), text(label)) << identifier;
    }
}

} // namespace
} // namespace quillory
