// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Records/ChoiceStats.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <QFile>

#include <gmock/gmock.h>

namespace quillory::test {

using testing::ContainsRegex;

TEST(ChoiceStats, WritesOneLineForEachChoice) {
    const SimulatedDesktop desktop;
    const ChoiceStats stats(desktop.process.homeDirectory());
    EXPECT_FALSE(QFile::exists(stats.fileURL()));
    const std::tuple<std::optional<double>, QList<ChoiceStats::Competitor>, std::string> cases[]{
        {1.234, {{u"b/y"_s, 2.5}}, "m,a;x,1.23,b/y=2.50\n"},
        {std::nullopt, {{u"b"_s, std::nullopt}, {u"c"_s, 12.3456}}, "m,a;x,,b=;c=12.35\n"},
        {0.125, {}, "m,a;x,0.12,\n"},
    };
    for (const auto &[elapsed, competitors, line] : cases) {
        QFile::remove(stats.fileURL());
        stats.record(u"m,a;x"_s, elapsed, competitors);
        const std::string written = contentOf(stats.fileURL()).toStdString();
        EXPECT_THAT(written, ContainsRegex("^20[0-9][0-9]-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-6][0-9]Z,m,"));
        EXPECT_EQ(written.substr(written.find(',') + 1), line);
    }
    stats.record(u"m"_s, 1, {});
    EXPECT_EQ(contentOf(stats.fileURL()).count('\n'), 2);
}

} // namespace quillory::test
