// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Records/ChoiceStats.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <QFile>

#include <gmock/gmock.h>

namespace quillory::test {

TEST(ChoiceStats, WritesOneLineForEachChoiceAndReadsItBack) {
    const SimulatedDesktop desktop;
    const ChoiceStats stats(desktop.process.homeDirectory());
    const std::pair<ChoiceRecord, std::string> cases[]{
        {{{u"m,a;x"_s, 1.234}, {{u"b/y"_s, 2.5}}}, "m,a;x,1.23,b/y=2.50\n"},
        {{{u"a=1.00;b"_s, {}}, {{u"b"_s, {}}, {u"c"_s, 12.3456}}}, "a=1.00;b,,b=;c=12.35\n"},
        {{{u"a"_s, 0.125}, {}}, "a,0.12,\n"},
    };
    for (const auto &[choice, line] : cases) {
        QFile::remove(stats.fileURL());
        stats.record(choice);
        stats.record(choice);
        const QByteArray written = contentOf(stats.fileURL());
        EXPECT_EQ(written.count('\n'), 2);
        const std::string last = written.split('\n').at(1).toStdString() + '\n';
        EXPECT_THAT(last, testing::MatchesRegex("20[0-9-]{8}T[0-9:]{8}Z,.*\n"));
        EXPECT_EQ(last.substr(last.find(',') + 1), line);
        const auto read = choiceRecord(QByteArray::fromStdString(last).trimmed());
        ASSERT_TRUE(read) << line;
        EXPECT_EQ(read->chosen.model, choice.chosen.model);
        EXPECT_EQ(read->competitors.size(), choice.competitors.size());
    }
}

TEST(ChoiceStats, ReadsWhatTheFormatCanTellApart) {
    const std::pair<const char *, std::optional<ChoiceRecord>> cases[]{
        {"a,,", ChoiceRecord{{u"a"_s, {}}, {}}},
        {"a,b;c,1.00,d,e;f=2.00", ChoiceRecord{{u"a,b;c"_s, 1.0}, {{u"d,e;f"_s, 2.0}}}},
        {"a=1.00;b,1.00,x=y=2.00", ChoiceRecord{{u"a=1.00;b"_s, 1.0}, {{u"x=y"_s, 2.0}}}},
        {"a,1.00", std::nullopt},
        {"a,1.0,", std::nullopt},
        {"a,1.00,b", std::nullopt},
        {"\xff,1.00,", std::nullopt},
    };
    for (const auto &[fields, expected] : cases) {
        EXPECT_EQ(choiceRecord(QByteArray("2026-01-31T09:05:07Z,") + fields), expected) << fields;
    }
    EXPECT_EQ(choiceRecord("yesterday,a,1.00,"), std::nullopt);
}

} // namespace quillory::test
