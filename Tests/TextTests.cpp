// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Text.h"

#include <gmock/gmock.h>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {
const QString loneHigh{QChar(0xd83d)};
const QString loneLow{QChar(0xde00)};
} // namespace

TEST(Text, CountsWhatAReaderWouldCount) {
    const QString flood = u'z' + QString(20'000, QChar(0x301));
    const std::pair<QString, qsizetype> cases[]{
        {QString(), 0},
        {u"a\r\nb\n\rc"_s, 6},
        {u"مَرْحَبًا"_s, 5},
        {u"👩🏽‍🚀!"_s, 2},
        {u"🇧🇭🇸🇦🇧"_s, 3},
        {u"🏴\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007F"_s, 1},
        {u"❤️1️⃣"_s, 2},
        {u"\u1112\u1161\u11ab\u1100\u1173\u11af"_s, 2},
        {loneHigh + loneHigh + u'x' + loneLow, 4},
        {flood + u'z', 2},
    };
    for (const auto &[text, count] : cases) {
        EXPECT_EQ(text::characterCount(text), count) << text.toStdString();
    }
}

TEST(Text, PrefixesKeepCharactersWhole) {
    EXPECT_EQ(text::prefix(u"a\r\nb"_s, 2), u"a\r\n"_s);
    EXPECT_EQ(text::prefix(u"👨‍👩‍👧‍👦 ok"_s, 2), u"👨‍👩‍👧‍👦 "_s);
    EXPECT_EQ(text::prefix(u"👨‍👩‍👧‍👦"_s, 5), u"👨‍👩‍👧‍👦"_s);
    EXPECT_EQ(text::prefix(u"e\u0301a"_s, 0), QString());

    EXPECT_TRUE(text::hasPrefix(u"café au lait"_s, u"cafe\u0301"_s));
    EXPECT_FALSE(text::hasPrefix(u"cafe\u0301"_s, u"cafe"_s));
    EXPECT_FALSE(text::hasPrefix(u"👍🏽"_s, u"👍"_s));
}

TEST(Text, CanonicallyEquivalentTextsAreOne) {
    const std::pair<QString, QString> same[]{
        {u"café"_s, u"cafe\u0301"_s},
        {u"각"_s, u"\u1100\u1161\u11a8"_s},
        {u"q\u0307\u0323"_s, u"q\u0323\u0307"_s},
        {u"Å"_s, u"\u212b"_s},
        {loneHigh + u"e\u0301"_s + loneLow, loneHigh + u'é' + loneLow},
    };
    for (const auto &[a, b] : same) {
        EXPECT_TRUE(text::equal(a, b)) << a.toStdString();
        EXPECT_EQ(text::hash(a), text::hash(b)) << a.toStdString();
        EXPECT_EQ((text::Set{a, b}.size()), 1U) << a.toStdString();
    }
    const std::pair<QString, QString> different[]{
        {u"a"_s, u"A"_s}, {u"ﬁ"_s, u"fi"_s}, {u"a\u00a0b"_s, u"a b"_s}, {loneHigh, loneLow}, {QString(), u"\u200d"_s},
    };
    for (const auto &[a, b] : different) {
        EXPECT_FALSE(text::equal(a, b)) << a.toStdString();
        EXPECT_NE(text::hash(a), text::hash(b)) << a.toStdString();
        EXPECT_EQ((text::Set{a, b}.size()), 2U) << a.toStdString();
    }
}

TEST(Text, LongRunsOfMarksAreComparedInPieces) {
    QString flood(u'z');
    for (int i = 0; i < 20'000; ++i) {
        flood += QChar(i % 2 == 0 ? 0x301 : 0x323);
    }
    EXPECT_TRUE(text::equal(u"café "_s + flood, u"cafe\u0301 "_s + flood));
    EXPECT_FALSE(text::equal(flood, flood + QChar(0x301)));
    EXPECT_EQ(text::hash(u"café "_s + flood), text::hash(u"cafe\u0301 "_s + flood));
}

TEST(Text, ContainsComparesWholeCharacters) {
    EXPECT_TRUE(text::contains(u"un cafe\u0301 noir"_s, u"café"_s));
    EXPECT_TRUE(text::contains(u"👍🏽 then 👍"_s, u"👍"_s));
    EXPECT_FALSE(text::contains(u"👍🏽"_s, u"👍"_s));
    EXPECT_FALSE(text::contains(u"👨‍👩‍👧"_s, u"👩"_s));
    EXPECT_FALSE(text::contains(u"a\r\nb"_s, u"\n"_s));
}

TEST(Text, TrimsExactlyItsSet) {
    EXPECT_EQ(text::trimmed(u"\u2029\u0085\t\u3000 a \n b\u200b \r\n\u00a0"_s), u"a \n b\u200b"_s);
    EXPECT_EQ(text::trimmedOfSpaces(u"\t\u00a0\n a \u3000"_s), u"\n a"_s);
    EXPECT_EQ(text::trimmedOfSpacesAndPunctuation(u"“ (SKIP). ”!¿"_s), u"SKIP"_s);
    EXPECT_EQ(text::trimmedOfSpacesAndPunctuation(u"\U00010100.+SKIP\n."_s), u"+SKIP\n"_s);
}

TEST(Text, KnowsWhetherATextIsLongEnough) {
    // Eight characters' worth of code units end in the middle of the last emoji.
    const QString seven = u"👁️👋👋👋👋👋👍🏽"_s;
    EXPECT_TRUE(text::hasAtLeast(seven, 7));
    EXPECT_FALSE(text::hasAtLeast(seven, 8));
    EXPECT_TRUE(text::hasAtLeast({}, 0));
}

} // namespace quillory::test
