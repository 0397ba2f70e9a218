// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Records/ChoiceStats.h"
#include "Quillory/Records/FileLog.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>

#include <thread>

namespace quillory::test {

using namespace Qt::StringLiterals;

using testing::ContainsRegex;
using testing::ElementsAre;
using testing::MatchesRegex;

namespace {
std::string content(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "(none)";
}
} // namespace

TEST(FileLog, WritesOneTimedLineForEachCall) {
    const SimulatedDesktop desktop;
    FileLog::log(u"first é"_s);
    const std::string time = "[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\\.[0-9][0-9][0-9] ";
    EXPECT_THAT(content(desktop.process.logPath()), MatchesRegex(time + "first é\n"));
    FileLog::log(QString());
    FileLog::log(u"a\nb"_s);
    EXPECT_THAT(content(desktop.process.logPath()), MatchesRegex(time + "first é\n" + time + "\n" + time + "a\nb\n"));
}

TEST(FileLog, AMissingFolderLosesTheLine) {
    const SimulatedDesktop desktop;
    const QString folder = desktop.process.homeDirectory() + u"/Library/Logs"_s;
    QDir(folder).removeRecursively();
    FileLog::log(u"lost"_s);
    EXPECT_FALSE(QFile::exists(folder));
    QDir().mkpath(folder);
    FileLog::log(u"kept"_s);
    EXPECT_THAT(desktop.log(), ElementsAre(u"kept"_s));
}

TEST(FileLog, LinesOfSeveralThreadsStayWhole) {
    const SimulatedDesktop desktop;
    const QString message(500, u'x');
    {
        const auto work = [&message] {
            for (int line = 0; line < 50; ++line) {
                FileLog::log(message);
            }
        };
        const std::jthread threads[]{std::jthread(work), std::jthread(work), std::jthread(work), std::jthread(work)};
    }
    EXPECT_EQ(desktop.log().count(message), 200);
}

TEST(ChoiceStats, WritesOneLineForEachChoice) {
    const SimulatedDesktop desktop;
    const ChoiceStats stats(desktop.process.homeDirectory());
    EXPECT_EQ(content(stats.fileURL()), "(none)");
    struct Case {
        std::optional<double> elapsed;
        QList<ChoiceStats::Competitor> competitors;
        std::string line;
    };
    const Case cases[]{
        {1.234, {{u"b/y"_s, 2.5}}, "m,a;x,1.23,b/y=2.50\n"},
        {std::nullopt, {{u"b"_s, std::nullopt}, {u"c"_s, 12.3456}}, "m,a;x,,b=;c=12.35\n"},
        {3.0, {}, "m,a;x,3.00,\n"},
        {0.125, {}, "m,a;x,0.12,\n"},
    };
    for (const auto &[elapsed, competitors, line] : cases) {
        QFile::remove(stats.fileURL());
        stats.record(u"m,a;x"_s, elapsed, competitors);
        const std::string written = content(stats.fileURL());
        EXPECT_THAT(written, ContainsRegex("^20[0-9][0-9]-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-6][0-9]Z,m,"));
        EXPECT_EQ(written.substr(written.find(',') + 1), line);
    }
    stats.record(u"m"_s, 1, {});
    EXPECT_EQ(QByteArray::fromStdString(content(stats.fileURL())).count('\n'), 2);

    QDir(desktop.process.homeDirectory() + u"/Library/Application Support"_s).removeRecursively();
    stats.record(u"lost"_s, 1, {});
    EXPECT_EQ(desktop.log().last(), u"choice recorded: lost"_s);
}

} // namespace quillory::test
