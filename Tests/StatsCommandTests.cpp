// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/StatsCommand.h"
#include "Quillory/Records/ChoiceRecords.h"
#include "Quillory/Records/ChoiceStats.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <QFile>

#include <gmock/gmock.h>

#include <sstream>

using namespace Qt::StringLiterals;

namespace quillory {
namespace {

TEST(ChoiceRecords, ReadsWhatTheFormatCanTellApart) {
    const std::pair<const char *, std::optional<ChoiceRecord>> cases[]{
        {"a,,", ChoiceRecord{{u"a"_s, {}}, {}}},
        {"a/b,0.40,b=;c=12.00", ChoiceRecord{{u"a/b"_s, 0.4}, {{u"b"_s, {}}, {u"c"_s, 12.0}}}},
        {"a,b;c,1.00,d,e;f=2.00", ChoiceRecord{{u"a,b;c"_s, 1.0}, {{u"d,e;f"_s, 2.0}}}},
        {"a=1.00;b,1.00,x=y=2.00", ChoiceRecord{{u"a=1.00;b"_s, 1.0}, {{u"x=y"_s, 2.0}}}},
        {"a,1.00", std::nullopt},
        {"a,1.0,", std::nullopt},
        {"a,1.00,b", std::nullopt},
        {"a,-1.00,", std::nullopt},
        {"", std::nullopt},
        {"\xff,1.00,", std::nullopt},
    };
    for (const auto &[fields, expected] : cases) {
        EXPECT_EQ(choiceRecord(QByteArray("2026-01-31T09:05:07Z,") + fields), expected) << fields;
    }
    EXPECT_EQ(choiceRecord("yesterday,a,1.00,"), std::nullopt);
}

struct StatsStory : testing::Test {
    test::SimulatedDesktop desktop;
    std::ostringstream output;
    std::ostringstream errors;

    int run(const QStringList &arguments) {
        std::istringstream input;
        return runStatsCommand(arguments, ChoiceStats::fileURL(desktop.process.homeDirectory()),
                               {input, output, errors});
    }
};

TEST_F(StatsStory, SaysSoWhenNothingWasRecorded) {
    EXPECT_EQ(run({}), exitStatus::failure);
    EXPECT_EQ(errors.str(), "quillory: no choices have been recorded yet.\n");
    EXPECT_EQ(run({u"--csv"_s}), exitStatus::misuse);
}

TEST_F(StatsStory, CountsWhatWasRecordedAndNamesWhatIsDamaged) {
    const ChoiceStats stats(desktop.process.homeDirectory());
    for (int i = 1; i <= 10; ++i) {
        stats.record(u"a/one"_s, i, {{u"b/two"_s, i == 1 ? std::nullopt : std::optional(0.5)}});
    }
    stats.record(u"b/two"_s, 0.25, {{u"a/one"_s, std::nullopt}});
    stats.record(u"a/one"_s, std::nullopt, {});
    QFile file(stats.fileURL());
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("torn\x1b[31m li");
    file.close();

    EXPECT_EQ(run({}), exitStatus::success);
    EXPECT_EQ(output.str(), "Model                     Chosen   Shown   Median     90 %\n"
                            "a/one                         11      12    5.00s    9.00s\n"
                            "  chosen 10 of 11 times against b/two\n"
                            "b/two                          1      11    0.50s    0.50s\n"
                            "  chosen 1 of 11 times against a/one\n");
    EXPECT_EQ(errors.str(), "quillory: line 13 is damaged and not counted: torn?[31m li\n");

    output.str({});
    EXPECT_EQ(run({u"--json"_s}), exitStatus::success);
    EXPECT_THAT(output.str(), testing::HasSubstr(R"("damagedLines": [
    13
  ])"));
    EXPECT_THAT(output.str(), testing::HasSubstr(R"("medianSeconds": 5.0)"));
}

} // namespace
} // namespace quillory
