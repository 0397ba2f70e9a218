// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Updates/VersionHistory.h"
#include "Updates/UpdateStory.h"

#include <QDir>

#include <array>
#include <fcntl.h>
#include <sys/stat.h>

namespace quillory::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class UpdateCheck : public UpdateStory {};

TEST(UpdateVersion, IsComparedNumberByNumber) {
    const struct {
        const char *version;
        const char *other;
        bool isNewer;
    } cases[] = {{"1.10", "1.9", true},
                 {"2.0", "2", false},
                 {"2", "2.0", false},
                 {"1.3", "1.2.9", true},
                 {"1.2.1", "1.2", true},
                 {"0.9", "1", false},
                 {"1.2", "1.2.0", false},
                 {"1..2", "1.1", true},
                 {".1.", "0.9", true},
                 {"1.3-beta", "1.0", false},
                 {"1.+3", "1.2", true},
                 {"1.-3", "1", false},
                 {"1. 3", "1.1", false},
                 {"1.3\n", "1.1", false},
                 {"1.99999999999999999999", "1.1", false},
                 {"1.9223372036854775807", "1.1", true},
                 {"\u0662", "1", false},
                 {"", "0", false},
                 {"0.0.1", "", true}};
    for (const auto &[version, other, isNewer] : cases) {
        EXPECT_EQ(quillory::isNewer(QString::fromUtf8(version), QString::fromUtf8(other)), isNewer)
            << version << " and " << other;
    }
}

TEST_F(UpdateCheck, TellsTheUserWhoAsked) {
    const struct {
        const char *what;
        QByteArray answer;
        QString log;
        QString alert;
    } cases[] = {
        {"the same version", answerWith("200 OK", R"({"version": "1", "url": "https://a/b"})"),
         QStringLiteral("update check: up to date (1)"),
         QStringLiteral("You're up to date|Quillory 1 is the latest version.")},
        {"an older one, with a status that does not count",
         answerWith("404 Not Found", R"({"version": "0.9", "url": "https://a/b", "more": [1]})"),
         QStringLiteral("update check: up to date (1)"),
         QStringLiteral("You're up to date|Quillory 1 is the latest version.")},
        {"a newer one without notes", answerWith("200 OK", R"({"version": "1.1", "url": "https://a/b"})"),
         QStringLiteral("update available: 1.1 (running 1)"),
         QStringLiteral("Quillory 1.1 is available|Install now and relaunch?|Install & Relaunch|Later")},
        {"a newer one with notes",
         answerWith("200 OK", R"({"version": "1.1", "url": "https://a/b", "notes": "Faster.\nBetter."})"),
         QStringLiteral("update available: 1.1 (running 1)"),
         QStringLiteral(
             "Quillory 1.1 is available|Faster.\nBetter.\n\nInstall now and relaunch?|Install & Relaunch|Later")},
        {"notes that are no text", answerWith("200 OK", R"({"version": "1.1", "url": "https://a/b", "notes": 7})"),
         QStringLiteral("update available: 1.1 (running 1)"),
         QStringLiteral("Quillory 1.1 is available|Install now and relaunch?|Install & Relaunch|Later")},
        {"a version that would write a line of the log",
         answerWith("200 OK", R"({"version": "2.\n12:00 x", "url": "https://a/b"})"),
         QStringLiteral("update available: 2. 12:00 x (running 1)"),
         QStringLiteral("Quillory 2. 12:00 x is available|Install now and relaunch?|Install & Relaunch|Later")},
        {"more than anybody reads",
         answerWith("200 OK", R"({"version": "2.)" + QByteArray(1000, '0') + R"(", "url": "https://a/b", "notes": ")" +
                                  QByteArray(900'000, 'n') + "\"}"),
         QStringLiteral("update available: 2.") + QString(62, u'0') + QStringLiteral(" (running 1)"),
         QStringLiteral("Quillory 2.") + QString(62, u'0') + QStringLiteral(" is available|") + QString(4000, u'n') +
             QStringLiteral("…\n\nInstall now and relaunch?|Install & Relaunch|Later")},
        {"a redirect to nowhere", answerWith("302 Found", R"({"version": "1", "url": "https://a/b"})"),
         QStringLiteral("update check: up to date (1)"),
         QStringLiteral("You're up to date|Quillory 1 is the latest version.")},
        {"a redirect", "HTTP/1.1 302 Found\r\nLocation: /elsewhere\r\nContent-Length: 0\r\n\r\n",
         QStringLiteral("update check: up to date (1)"),
         QStringLiteral("You're up to date|Quillory 1 is the latest version.")},
    };
    answers["/elsewhere"] = answerWith("200 OK", R"({"version": "1", "url": "https://a/b"})");
    for (const auto &[what, answer, log, alert] : cases) {
        answers["/version.json"] = answer;
        application().alerts.clear();
        checker.check(true);
        ASSERT_TRUE(awaitAlerts(1)) << what;
        EXPECT_THAT(application().shown(), ElementsAre(alert)) << what;
        EXPECT_EQ(desktop.log().last(), log) << what;
        if (application().alerts.front().buttons.size() > 1) {
            application().answer(1);
        }
    }
    EXPECT_EQ(desktop.log().size(), std::size(cases)) << "one line each, and nothing was installed";
}

TEST_F(UpdateCheck, SaysWhatWentWrong) {
    const QByteArray plain = "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: ";
    const QString format = QStringLiteral("The version feed is not in the correct format.");
    const QString bad = QStringLiteral("bad version feed");
    const struct {
        const char *what;
        QByteArray answer;
        QString description;
    } cases[] = {
        {"no JSON", answerWith("404 Not Found", "<html>"), format},
        {"nothing", answerWith("200 OK", ""), format},
        {"deep JSON", answerWith("200 OK", QByteArray(500'000, '[')), format},
        {"deep JSON that ends",
         answerWith("200 OK", R"({"version": "2", "url": "https://a", "x": )" + QByteArray(5000, '[') +
                                  QByteArray(5000, ']') + "}"),
         format},
        {"an array", answerWith("200 OK", "[]"), bad},
        {"no address", answerWith("200 OK", R"({"version": "2"})"), bad},
        {"an empty address", answerWith("200 OK", R"({"version": "2", "url": ""})"), bad},
        {"an address that is none", answerWith("200 OK", R"({"version": "2", "url": "https://a b:x"})"), bad},
        {"a version that is a number", answerWith("200 OK", R"({"version": 2, "url": "https://a/b"})"), bad},
        {"an address that is null", answerWith("200 OK", R"({"version": "2", "url": null})"), bad},
        {"10 MB", answerWith("200 OK", QByteArray(10 << 20, ' ')), QStringLiteral("The answer is too long.")},
        {"a body without end", plain + "/endless\r\n\r\n", QStringLiteral("The answer is too long.")},
        {"less than announced", "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n{",
         QStringLiteral("The connection to the server was lost.")},
        {"a redirect to http", plain + "http://192.0.2.1/version.json\r\n\r\n",
         QStringLiteral("The address is not secure: it must begin with https://.")},
        {"a redirect to a file", plain + "file:///etc/passwd\r\n\r\n",
         QStringLiteral("The server points to an address that is not secure.")},
        {"a redirect to itself", plain + "/version.json\r\n\r\n",
         QStringLiteral("The server points from one address to the next without end.")},
    };
    for (const auto &[what, answer, description] : cases) {
        answers["/version.json"] = answer;
        application().alerts.clear();
        checker.check(true);
        ASSERT_TRUE(awaitAlerts(1)) << what;
        EXPECT_THAT(application().shown(), ElementsAre(QStringLiteral("Update check failed|") + description)) << what;
        EXPECT_EQ(desktop.log().last(), QStringLiteral("update check failed: ") + description) << what;
    }
    EXPECT_EQ(desktop.log().size(), std::size(cases));
}

TEST_F(UpdateCheck, IsMadeAtLaunchAndEverySixHoursAndIsSilentUnlessThereIsSomethingNew) {
    checker.startPeriodicChecks();
    ASSERT_TRUE(awaitLog(1));
    announce(R"({"version": "2", "url": "https://a/b"})");
    desktop.advance(21'599'000);
    EXPECT_EQ(desktop.log().size(), 1);
    desktop.advance(1000);
    ASSERT_TRUE(awaitAlerts(1));
    EXPECT_THAT(desktop.log(),
                ElementsAre(QStringLiteral("update check failed: The version feed is not in the correct format."),
                            QStringLiteral("update available: 2 (running 1)")));
    desktop.advance(21'600'000);
    ASSERT_TRUE(awaitLog(3));
    desktop.advance(0);
    EXPECT_EQ(application().alerts.size(), 1U) << "the first offer still stands";
    application().answer(1);
    desktop.advance(21'600'000);
    EXPECT_TRUE(awaitAlerts(2)) << "what was put off comes again";
}

TEST_F(UpdateCheck, ClearsAwayWhatAnInterruptedInstallLeft) {
    const QString temporary = folder.filePath(QStringLiteral("tmp/"));
    const std::array<timespec, 2> longAgo{timespec{1000, 0}, timespec{1000, 0}};
    for (const char *name : {"QuilloryUpdate-OLD", "QuilloryUpdate-NEW", "quillory-download-old", "another-old"}) {
        const QString path = temporary + QLatin1StringView(name);
        QDir().mkpath(path);
        writeFile(path + QStringLiteral("/file"), "x", 0444);
        if (!path.endsWith(QStringLiteral("NEW"))) {
            utimensat(AT_FDCWD, qPrintable(path), longAgo.data(), 0);
        }
    }
    // Another process installs since before the computer was put to sleep.
    const platform::desktop::LinuxCodeSigning signing = trustingTeam();
    platform::desktop::LinuxFileSystem other(signing);
    const QString download = temporary + QStringLiteral("quillory-download-LIVING");
    writeFile(download, "x");
    other.hold(download);
    utimensat(AT_FDCWD, qPrintable(download), longAgo.data(), 0);
    other.createDirectory(temporary + QStringLiteral("QuilloryUpdate-LIVING"));
    utimensat(AT_FDCWD, qPrintable(temporary + QStringLiteral("QuilloryUpdate-LIVING")), longAgo.data(), 0);
    checker.check(false);
    ASSERT_TRUE(awaitLog(1));
    EXPECT_THAT(temporaryFiles(),
                testing::UnorderedElementsAre(QStringLiteral("quillory-download-LIVING"),
                                              QStringLiteral("QuilloryUpdate-LIVING"),
                                              QStringLiteral("QuilloryUpdate-NEW"), QStringLiteral("another-old")));
}

TEST_F(UpdateCheck, CountsAsVersion0WithoutABundle) {
    desktop.process.information.clear();
    announce(R"({"version": "0.0.1", "url": "https://a/b"})");
    checker.check(false);
    ASSERT_TRUE(awaitAlerts(1));
    EXPECT_THAT(desktop.log(), ElementsAre(QStringLiteral("update available: 0.0.1 (running 0)")));
}

TEST_F(UpdateCheck, AsksNoAddressThatIsNotSafe) {
    desktop.process.variables[QStringLiteral("QUILLORY_UPDATE_FEED")] = QStringLiteral("http://192.0.2.1/");
    checker.check(true);
    ASSERT_TRUE(awaitAlerts(1));
    EXPECT_THAT(application().alerts.front().body,
                testing::Property(&QString::toStdString, testing::HasSubstr("must begin with https://")));
}

} // namespace
} // namespace quillory::test
