// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Text.h"

#include <gmock/gmock.h>

namespace quillory::test {
namespace {
const QString loneHigh{QChar(0xd83d)};
const QString loneLow{QChar(0xde00)};
} // namespace

TEST(Text, CountsWhatAReaderWouldCount) {
    const QString flood = u'z' + QString(20'000, QChar(0x301));
    const std::pair<QString, qsizetype> cases[]{
        {QString(), 0},
        {u"plain"_qs, 5},
        {u"a\r\nb"_qs, 3},
        {u"a\n\rb"_qs, 4},
        {u"naïve café"_qs, 10},
        {u"cafe\u0301"_qs, 4},
        {u"مَرْحَبًا"_qs, 5},
        {u"👨‍👩‍👧‍👦!"_qs, 2},
        {u"👩🏽‍🚀"_qs, 1},
        {u"🇧🇭🇸🇦🇧"_qs, 3},
        {u"🏴\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007F"_qs, 1},
        {u"❤️1️⃣"_qs, 2},
        {u"\u1112\u1161\u11ab\u1100\u1173\u11af"_qs, 2},
        {u"a\u200db"_qs, 2},
        {loneHigh + loneHigh + u'x' + loneLow, 4},
        {flood + u'z', 2},
    };
    for (const auto &[text, count] : cases) {
        EXPECT_EQ(text::characterCount(text), count) << text.toStdString();
    }
}

TEST(Text, PrefixesKeepCharactersWhole) {
    EXPECT_EQ(text::prefix(u"plain"_qs, 2), u"pl"_qs);
    EXPECT_EQ(text::prefix(u"a\r\nb"_qs, 2), u"a\r\n"_qs);
    EXPECT_EQ(text::prefix(u"👨‍👩‍👧‍👦 ok"_qs, 2), u"👨‍👩‍👧‍👦 "_qs);
    EXPECT_EQ(text::prefix(u"👨‍👩‍👧‍👦"_qs, 5), u"👨‍👩‍👧‍👦"_qs);
    EXPECT_EQ(text::prefix(u"e\u0301a"_qs, 0), QString());
    EXPECT_EQ(text::prefix(u"ab"_qs, -1), QString());

    EXPECT_TRUE(text::hasPrefix(u"café au lait"_qs, u"cafe\u0301"_qs));
    EXPECT_TRUE(text::hasPrefix(u"x"_qs, QString()));
    EXPECT_FALSE(text::hasPrefix(u"cafe\u0301"_qs, u"cafe"_qs));
    EXPECT_FALSE(text::hasPrefix(u"👍🏽"_qs, u"👍"_qs));
    EXPECT_FALSE(text::hasPrefix(u"ab"_qs, u"abc"_qs));
}

TEST(Text, CanonicallyEquivalentTextsAreOne) {
    const std::pair<QString, QString> same[]{
        {u"café"_qs, u"cafe\u0301"_qs},
        {u"각"_qs, u"\u1100\u1161\u11a8"_qs},
        {u"q\u0307\u0323"_qs, u"q\u0323\u0307"_qs},
        {u"Å"_qs, u"\u212b"_qs},
        {loneHigh + u"e\u0301"_qs + loneLow, loneHigh + u'é' + loneLow},
    };
    for (const auto &[a, b] : same) {
        EXPECT_TRUE(text::equal(a, b)) << a.toStdString();
        EXPECT_EQ(text::hash(a), text::hash(b)) << a.toStdString();
        EXPECT_EQ((text::Set{a, b}.size()), 1U) << a.toStdString();
    }
    const std::pair<QString, QString> different[]{
        {u"a"_qs, u"A"_qs},  {u"ﬁ"_qs, u"fi"_qs},       {u"a\u00a0b"_qs, u"a b"_qs},
        {loneHigh, loneLow}, {QString(), u"\u200d"_qs},
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
    EXPECT_TRUE(text::equal(u"café "_qs + flood, u"cafe\u0301 "_qs + flood));
    EXPECT_FALSE(text::equal(flood, flood + QChar(0x301)));
    EXPECT_EQ(text::hash(u"café "_qs + flood), text::hash(u"cafe\u0301 "_qs + flood));
}

TEST(Text, ContainsComparesWholeCharacters) {
    EXPECT_TRUE(text::contains(u"un cafe\u0301 noir"_qs, u"café"_qs));
    EXPECT_TRUE(text::contains(u"👍🏽 then 👍"_qs, u"👍"_qs));
    EXPECT_TRUE(text::contains(u"x"_qs, QString()));
    EXPECT_FALSE(text::contains(u"👍🏽"_qs, u"👍"_qs));
    EXPECT_FALSE(text::contains(u"👨‍👩‍👧"_qs, u"👩"_qs));
    EXPECT_FALSE(text::contains(u"a\r\nb"_qs, u"\n"_qs));
    EXPECT_FALSE(text::contains(QString(), u"a"_qs));
}

TEST(Text, TrimsExactlyItsSet) {
    EXPECT_EQ(text::trimmed(u"\u2029\u0085\t\u3000 a \n b\u200b \r\n\u00a0"_qs), u"a \n b\u200b"_qs);
    EXPECT_EQ(text::trimmed(u" \n\t"_qs), QString());
    EXPECT_EQ(text::trimmed(loneLow + u' '), loneLow);
    EXPECT_EQ(text::trimmedOfSpaces(u"\t\u00a0\n a \u3000"_qs), u"\n a"_qs);
    EXPECT_EQ(text::trimmedOfSpacesAndPunctuation(u"“ (SKIP). ”!¿"_qs), u"SKIP"_qs);
    EXPECT_EQ(text::trimmedOfSpacesAndPunctuation(u"\U00010100.+SKIP\n."_qs), u"+SKIP\n"_qs);
}

TEST(Text, KnowsWhetherATextIsLongEnough) {
    // Eight characters' worth of code units end in the middle of the last emoji.
    const QString seven = u"👁️👋👋👋👋👋👍🏽"_qs;
    EXPECT_TRUE(text::hasAtLeast(seven, 7));
    EXPECT_FALSE(text::hasAtLeast(seven, 8));
    EXPECT_TRUE(text::hasAtLeast({}, 0));
}

TEST(Text, WritesNumbersAsCDoes) {
    EXPECT_EQ(text::fixed(1.25, 1), u"1.2"_qs);
    EXPECT_EQ(text::fixed(12.3456, 2), u"12.35"_qs);
    EXPECT_EQ(text::fixed(3, 2), u"3.00"_qs);
}

} // namespace quillory::test
