// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Updates/VersionHistory.h"
#include "Updates/UpdateStory.h"

#include <array>
#include <fcntl.h>
#include <sys/stat.h>

namespace quillory::test {
namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;

class UpdateCheck : public UpdateStory {};

TEST(UpdateVersion, IsComparedNumberByNumber) {
    const std::pair<QString, QString> newer[]{
        {u"1.10"_s, u"1.9"_s}, {u"1.3"_s, u"1.2.9"_s}, {u".1."_s, u"0.9"_s}, {u"1.9223372036854775807"_s, u"1.1"_s},
        {u"1.+3"_s, u"1.2"_s}, {u"0.0.1"_s, u""_s},
    };
    const std::pair<QString, QString> notNewer[]{
        {u"2.0"_s, u"2"_s},
        {u"2"_s, u"2.0"_s},
        {u"1.3-beta"_s, u"1"_s},
        {u"1.-3"_s, u"1"_s},
        {u"1.3\n"_s, u"1.1"_s},
        {u"\u0662"_s, u"1"_s},
        {u"1.99999999999999999999"_s, u"1.1"_s},
    };
    for (const auto &[version, other] : newer) {
        EXPECT_TRUE(isNewer(version, other)) << version.toStdString();
        EXPECT_FALSE(isNewer(other, version)) << version.toStdString();
    }
    for (const auto &[version, other] : notNewer) {
        EXPECT_FALSE(isNewer(version, other)) << version.toStdString();
    }
}

/// What a check shows and logs.
using Report = std::pair<QString, QString>;

Report failure(const QString &description) {
    return {u"Update check failed|"_s + description, u"update check failed: "_s + description};
}

/// notes: with the empty line after them.
Report offer(const QString &version, const QString &notes = {}) {
    return {u"Quillory %1 is available|%2Install now and relaunch?|Install & Relaunch|Later"_s.arg(version, notes),
            u"update available: %1 (running 1)"_s.arg(version)};
}

TEST_F(UpdateCheck, TellsTheUserWhoAsked) {
    const auto feed = [](const QByteArray &members) {
        return answerWith("200 OK", R"({"url": "https://a/b", )" + members + '}');
    };
    const QByteArray redirect = "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: ";
    const Report upToDate{u"You're up to date|Quillory 1 is the latest version."_s, u"update check: up to date (1)"_s};
    const Report badFormat = failure(u"The version feed is not in the correct format."_s);
    const Report bad = failure(u"bad version feed"_s);
    const Report tooLong = failure(u"The answer is too long."_s);
    const struct {
        const char *what;
        QByteArray answer;
        Report report;
    } cases[] = {
        {"an older one, with a status that does not count", feed(R"("version": "0.9")").replace("200", "404"),
         upToDate},
        {"a redirect to nowhere", feed(R"("version": "1")").replace("200", "302"), upToDate},
        {"a redirect", redirect + "/elsewhere\r\n\r\n", upToDate},
        {"notes", feed(R"("version": "1.1", "notes": "Fast.\nGood.")"), offer(u"1.1"_s, u"Fast.\nGood.\n\n"_s)},
        {"notes that are no text", feed(R"("version": "1.1", "notes": 7)"), offer(u"1.1"_s)},
        {"a version that would write a line of the log", feed(R"("version": "2.\n12:00 x")"), offer(u"2. 12:00 x"_s)},
        {"more than anybody reads",
         feed(R"("version": "2.)" + QByteArray(1000, '0') + R"(", "notes": ")" + QByteArray(900'000, 'n') + '"'),
         offer(u"2."_s + QString(62, u'0'), QString(4000, u'n') + u"…\n\n"_s)},
        {"no JSON", answerWith("404 Not Found", "<html>"), badFormat},
        {"deep JSON", feed(R"("version": "2", "x": )" + QByteArray(5000, '[') + QByteArray(5000, ']')), badFormat},
        {"an array", answerWith("200 OK", "[]"), bad},
        {"an address that is none", feed(R"("version": "2")").replace("a/b", "a b"), bad},
        {"a version that is a number", feed(R"("version": 2)"), bad},
        {"10 MB", answerWith("200 OK", QByteArray(10 << 20, ' ')), tooLong},
        {"a body without end", redirect + "/endless\r\n\r\n", tooLong},
        {"less than announced", "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n{",
         failure(u"The connection to the server was lost."_s)},
        {"a redirect to http", redirect + "http://192.0.2.1/version.json\r\n\r\n",
         failure(u"The address is not secure: it must begin with https://."_s)},
        {"a redirect to a file", redirect + "file:///etc/passwd\r\n\r\n",
         failure(u"The server points to an address that is not secure."_s)},
        {"a redirect to itself", redirect + "/version.json\r\n\r\n",
         failure(u"The server points from one address to the next without end."_s)},
    };
    answers["/elsewhere"] = feed(R"("version": "1")");
    for (const auto &[what, answer, report] : cases) {
        answers["/version.json"] = answer;
        application().alerts.clear();
        checker.check(true);
        ASSERT_TRUE(awaitAlerts(1)) << what;
        EXPECT_THAT(application().shown(), ElementsAre(report.first)) << what;
        EXPECT_EQ(desktop.log().last(), report.second) << what;
        application().answer(1);
    }
    EXPECT_EQ(desktop.log().size(), std::size(cases)) << "one line each, and nothing was installed";
}

TEST_F(UpdateCheck, IsMadeAtLaunchAndEverySixHoursAndIsSilentUnlessThereIsSomethingNew) {
    checker.startPeriodicChecks();
    ASSERT_TRUE(awaitLog(1));
    announce(R"({"version": "2", "url": "https://a/b"})");
    desktop.advance(21'599'000);
    EXPECT_EQ(desktop.log().size(), 1);
    desktop.advance(1000);
    ASSERT_TRUE(awaitAlerts(1));
    EXPECT_THAT(desktop.log(), ElementsAre(u"update check failed: The version feed is not in the correct format."_s,
                                           u"update available: 2 (running 1)"_s));
    desktop.advance(21'600'000);
    ASSERT_TRUE(awaitLog(3));
    desktop.advance(0);
    EXPECT_EQ(application().alerts.size(), 1U) << "the first offer is still open";
    application().answer(1);
    desktop.advance(21'600'000);
    EXPECT_TRUE(awaitAlerts(2)) << "what was put off comes again";
}

TEST_F(UpdateCheck, ClearsAwayWhatAnInterruptedInstallLeft) {
    const QString temporary = folder.filePath(u"tmp/"_s);
    const auto makeOld = [](const QString &path) {
        const std::array<timespec, 2> longAgo{timespec{1000, 0}, timespec{1000, 0}};
        utimensat(AT_FDCWD, qPrintable(path), longAgo.data(), 0);
    };
    for (const char *name : {"QuilloryUpdate-OLD", "QuilloryUpdate-NEW", "quillory-download-old", "another-old"}) {
        const QString path = temporary + QLatin1StringView(name);
        QDir().mkpath(path);
        writeFile(path + u"/file"_s, "x", 0444);
        if (!path.endsWith(u"NEW"_s)) {
            makeOld(path);
        }
    }
    // Another process has been installing since before the computer was put to sleep.
    const platform::desktop::LinuxCodeSigning signing = trustingTeam();
    platform::desktop::LinuxInstallation other(signing);
    const QString download = temporary + u"quillory-download-LIVING"_s;
    writeFile(download, "x");
    other.hold(download);
    const QString work = other.makeWorkFolder(u"QuilloryUpdate-"_s);
    makeOld(download);
    makeOld(work);
    checker.check(false);
    ASSERT_TRUE(awaitLog(1));
    EXPECT_THAT(temporaryFiles(),
                testing::UnorderedElementsAre(u"quillory-download-LIVING"_s, work.sliced(temporary.size()),
                                              u"QuilloryUpdate-NEW"_s, u"another-old"_s));
}

TEST_F(UpdateCheck, AsksNoAddressThatIsNotSafe) {
    desktop.process.variables[u"QUILLORY_UPDATE_FEED"_s] = u"http://192.0.2.1/"_s;
    checker.check(true);
    ASSERT_TRUE(awaitAlerts(1));
    EXPECT_TRUE(application().alerts.front().body.contains(u"must begin with https://"_s));
}

} // namespace
} // namespace quillory::test
