// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Monitor/DraftRules.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace quillory {
namespace {

QString text(const char *utf8) {
    return QString::fromUtf8(utf8);
}

QString letters(qsizetype count) {
    return QString(count, u'x');
}

FieldSituation messageBox(qint64 maxChars) {
    FieldSituation field;
    field.isTextElement = true;
    field.isChat = true;
    field.maxChars = maxChars;
    return field;
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
    FieldSituation field = messageBox(12);
    field.minChars = 8;
    for (const auto &[draft, allowed] : std::vector<std::pair<QString, bool>>{
             {letters(7), false},
             {letters(8), true},
             {u"  "_s + letters(7) + u'\n', false},
             {letters(8) + u"     "_s, false},
             {u"👋🏽"_s.repeated(7), false},
             {u"👋🏽"_s.repeated(12), true},
             {u"👋🏽"_s.repeated(13), false},
         }) {
        field.value = draft;
        EXPECT_EQ(gateOf(field) == Gate::rewrite, allowed) << draft.toStdString();
    }
}

TEST(DraftRules, LeaveAnInsertedTextAlone) {
    FieldSituation base = messageBox(99);
    base.value = u"Good\u00A0day, Amal "_s;
    FieldSituation field = base;
    EXPECT_EQ(gateOf(field), Gate::rewrite);
    field.lastInserted = u"Good day,  Amal"_s;
    EXPECT_EQ(gateOf(field), Gate::justInserted);
    field = base;
    field.secondsSinceInsert = 2.0;
    EXPECT_EQ(gateOf(field), Gate::justInserted);
    field.secondsSinceInsert = 2.01;
    EXPECT_EQ(gateOf(field), Gate::rewrite);
}

TEST(DraftRules, StartRequestsALittleBeforeThePauseEnds) {
    for (const auto &[idle, debounceMs, phase] : std::vector<std::tuple<double, qint64, PausePhase>>{
             {0.24, 500, PausePhase::wait},
             {0.25, 500, PausePhase::prefetch},
             {0.49, 500, PausePhase::prefetch},
             {0.5, 500, PausePhase::show},
             {0.19, 450, PausePhase::wait},
             {0.2, 300, PausePhase::prefetch},
             {0, 0, PausePhase::show},
         }) {
        EXPECT_EQ(pausePhase(idle, debounceMs), phase) << idle << " of " << debounceMs;
    }
}

} // namespace
} // namespace quillory
