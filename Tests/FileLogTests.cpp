// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Records/FileLog.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <gmock/gmock.h>

#include <thread>

namespace quillory::test {

using namespace Qt::StringLiterals;

using testing::MatchesRegex;

TEST(FileLog, WritesOneTimedLineForEachCall) {
    const SimulatedDesktop desktop;
    FileLog::log(u"first é"_s);
    const std::string time = "[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\\.[0-9][0-9][0-9] ";
    FileLog::log(QString());
    FileLog::log(u"a\nb"_s);
    EXPECT_THAT(contentOf(desktop.process.logPath()).toStdString(),
                MatchesRegex(time + "first é\n" + time + "\n" + time + "a\nb\n"));
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

} // namespace quillory::test
