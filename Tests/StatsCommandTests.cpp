// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Records/ChoiceStats.h"
#include "Terminal.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace quillory {
namespace {

TEST(StatsCommand, CountsWhatWasRecordedAndNamesWhatIsDamaged) {
    test::SimulatedDesktop desktop;
    test::Terminal terminal(desktop);
    EXPECT_EQ(terminal.run({u"stats"_s}), exitStatus::failure);
    EXPECT_EQ(terminal.errors, "quillory: no choices have been recorded yet.\n");
    const ChoiceStats stats(desktop.process.homeDirectory());
    for (int i = 1; i <= 10; ++i) {
        stats.record({{u"a/one"_s, i}, {{u"b/two"_s, i == 1 ? std::nullopt : std::optional(0.5)}}});
    }
    stats.record({{u"b/two"_s, 0.25}, {{u"a/one"_s, {}}}});
    stats.record({{u"a/one"_s, {}}, {}});
    QFile file(stats.fileURL());
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("torn\x1b[31m li");
    file.close();

    EXPECT_EQ(terminal.run({u"stats"_s}), exitStatus::success);
    EXPECT_EQ(terminal.output, "Model                     Chosen   Shown   Median     90 %\n"
                               "a/one                         11      12    5.00s    9.00s\n"
                               "  chosen 10 of 11 times against b/two\n"
                               "b/two                          1      11    0.50s    0.50s\n"
                               "  chosen 1 of 11 times against a/one\n");
    EXPECT_EQ(terminal.errors, "quillory: line 13 is damaged and not counted: torn?[31m li\n");

    EXPECT_EQ(terminal.run({u"stats"_s, u"--json"_s}), exitStatus::success);
    EXPECT_THAT(terminal.output, testing::AllOf(testing::HasSubstr("\"damagedLines\": [\n    13\n  ]"),
                                                testing::HasSubstr(R"("medianSeconds": 5.0)")));
}

} // namespace
} // namespace quillory
