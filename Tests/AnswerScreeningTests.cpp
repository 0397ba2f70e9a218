// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Monitor/AnswerScreening.h"

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
             {"a//straße-ßx--é/", "Straße SSx É"},
             {"/", "/"},
         }) {
        EXPECT_EQ(prettyModelName(text(identifier)), text(label)) << identifier;
    }
}

} // namespace
} // namespace quillory
