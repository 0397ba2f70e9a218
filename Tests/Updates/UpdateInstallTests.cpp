// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Updates/VersionHistory.h"
#include "Updates/UpdateStory.h"

#include <sys/stat.h>

namespace quillory::test {
namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

class UpdateInstall : public UpdateStory {
  protected:
    [[nodiscard]] QString made(int version, const platform::desktop::SigningKey &key = teamKey()) const {
        const QString bundle = folder.filePath(u"made/Quillory.app"_s);
        QDir(bundle).removeRecursively();
        makeSignedBundle(bundle, version, key);
        return bundle;
    }
    /// An archive with a signed bundle of that version.
    [[nodiscard]] QByteArray archiveOf(int version) const { return zipOf(made(version)); }
    void serve(const QByteArray &archive) { answers["/Quillory.zip"] = answerWith("200 OK", archive); }
    /// Starts an install and waits for its end, which it may bring about itself.
    void installFrom() {
        checker.install(url(u"/Quillory.zip"_s));
        EXPECT_TRUE(desktop.mainQueue.runUntil([&] { return !application().hasProgress; }));
    }
    /// Nothing of it may be left, and nothing have changed.
    void expectRefusal(const char *attack, const QString &description) {
        EXPECT_THAT(application().shown(), ElementsAre(u"Update failed|"_s + description)) << attack;
        EXPECT_THAT(desktop.log(), ElementsAre(u"update install failed: "_s + description)) << attack;
        EXPECT_EQ(vouchedVersion(target), "1") << attack;
        EXPECT_THAT(temporaryFiles(), IsEmpty()) << attack;
        EXPECT_FALSE(application().isTerminated) << attack;
        EXPECT_EQ(installation.relaunched, QString()) << attack;
        application().alerts.clear();
        QFile::remove(desktop.process.logPath());
    }
};

const QString mismatch = u"update signature mismatch — refusing to install"_s;
const QString notNewer = u"update is not newer than what has run here — refusing to install"_s;
const QString unzipFailed = u"unzip failed"_s;

TEST_F(UpdateInstall, PutsTheOfferedVersionInPlaceAndStartsIt) {
    announce(R"({"version": "2", "url": ")" + url(u"/Quillory.zip"_s).toEncoded() + "\"}");
    serve(archiveOf(2));
    checker.check(false);
    ASSERT_TRUE(awaitAlerts(1));
    application().answer(0);
    ASSERT_TRUE(desktop.mainQueue.runUntil([&] { return application().isTerminated; }));
    EXPECT_EQ(vouchedVersion(target), "2");
    EXPECT_THAT(desktop.log(), ElementsAre(u"update available: 2 (running 1)"_s, u"update installed, relaunching"_s));
    EXPECT_EQ(installation.relaunched, u"/Applications/Quillory.app"_s);
    EXPECT_THAT(application().works,
                ElementsAre(u"Downloading the update…"_s, u"Unpacking the update…"_s, u"Checking the update…"_s));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(UpdateInstall, RefusesWhatIsNotGenuineNotNewerOrNotWhole) {
    using platform::desktop::SigningKey;
    const QByteArray genuine = archiveOf(2);
    QFile::remove(made(2) + u"/Manifest.signature"_s);
    const QByteArray notSigned = zipOf(folder.filePath(u"made/Quillory.app"_s));
    const auto whole = [](const QByteArray &archive) { return answerWith("200 OK", archive); };
    const QByteArray redirect = "HTTP/1.1 307 Moved\r\nLocation: ";
    const QString noApplication = u"no app in update archive"_s;
    const QString tooLong = u"The answer is too long."_s;
    answers["/elsewhere"] = whole(genuine);
    const struct {
        const char *attack;
        QByteArray answer;
        QString description;
    } attacks[] = {
        {"rollback", whole(archiveOf(0)), notNewer},
        {"equal version", whole(archiveOf(1)), notNewer},
        {"wrong key", whole(zipOf(made(3, SigningKey::generated(team)))), mismatch},
        {"another team", whole(zipOf(made(3, SigningKey::generated(u"OTHERTEAM1"_s)))), mismatch},
        {"no signature", whole(notSigned), mismatch},
        {"a zip in a zip", whole(zipWith({{"Quillory.zip", genuine}})), noApplication},
        {"the application in a folder", whole(zipOf(made(2), "folder/Quillory.app")), noApplication},
        {"missing beginning", whole(genuine.sliced(40)), unzipFailed},
        {"truncated", whole(genuine).chopped(100), u"The connection to the server was lost."_s},
        {"longer than announced", "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n" + genuine, unzipFailed},
        {"redirect to http", redirect + "http://192.0.2.1/\r\nContent-Length: 0\r\n\r\n",
         u"The address is not secure: it must begin with https://."_s},
        {"redirect with a body", redirect + "/elsewhere\r\nContent-Length: 99999\r\n\r\n" + QByteArray(99'999, ' '),
         tooLong},
        {"huge", "HTTP/1.1 200 OK\r\nContent-Length: 999999999999\r\n\r\n", tooLong},
    };
    for (const auto &[attack, answer, description] : attacks) {
        answers["/Quillory.zip"] = answer;
        installFrom();
        expectRefusal(attack, description);
    }
}

TEST_F(UpdateInstall, NeverGoesBackBehindTheHighestVersionThatRan) {
    desktop.process.information[u"CFBundleShortVersionString"_s] = u"5"_s;
    checker.startPeriodicChecks();
    ASSERT_TRUE(awaitLog(1));
    QFile::remove(desktop.process.logPath());
    desktop.process.information[u"CFBundleShortVersionString"_s] = u"1"_s;
    serve(archiveOf(4));
    installFrom();
    expectRefusal("older than the highest", notNewer);
    serve(archiveOf(5));
    installFrom();
    EXPECT_EQ(vouchedVersion(target), "5") << "which ran already, and was lost since";
    // The same decides at a start.
    const VersionHistory history(desktop.process.homeDirectory());
    EXPECT_FALSE(history.permits(u"4"_s, u"1"_s));
    EXPECT_TRUE(history.permits(u"5"_s, u"1"_s)) << "which is the one that ran";
    EXPECT_FALSE(isFromOurTeam({u"OTHERTEAM1"_s, {}, u"6"_s}));
}

TEST_F(UpdateInstall, LeavesNothingWhenItIsCancelled) {
    checker.install(url(u"/endless"_s));
    ASSERT_TRUE(desktop.mainQueue.runUntil([&] { return !application().works.isEmpty(); }));
    checker.offerUpdate(u"3"_s, {}, url(u"/Quillory.zip"_s));
    checker.install(url(u"/Quillory.zip"_s));
    EXPECT_THAT(application().shown(), ElementsAre(u"Update failed|Another update is being installed."_s));
    application().pressCancel();
    ASSERT_TRUE(desktop.mainQueue.runUntil([&] { return !application().hasProgress; }));
    EXPECT_THAT(desktop.log(), ElementsAre(u"update install failed: Another update is being installed."_s,
                                           u"update install cancelled"_s));
    EXPECT_EQ(application().alerts.size(), 1U);
    EXPECT_THAT(temporaryFiles(), IsEmpty());
    EXPECT_EQ(vouchedVersion(target), "1");
}

TEST_F(UpdateInstall, SaysThatTheDownloadCannotBeSaved) {
    serve(archiveOf(2));
    qputenv("TMPDIR", "/proc");
    installFrom();
    ASSERT_EQ(application().alerts.size(), 1U);
    EXPECT_THAT(application().alerts.front().body.toStdString(),
                testing::StartsWith("The download could not be saved: "));
    const QString everybodys = folder.filePath(u"everybodys"_s);
    QDir().mkpath(everybodys);
    chmod(qPrintable(everybodys), 0777);
    qputenv("TMPDIR", everybodys.toUtf8());
    installFrom();
    EXPECT_EQ(application().alerts.back().body, u"The folder %1 can be changed by others."_s.arg(everybodys));
    chmod(qPrintable(everybodys), 0755);
    constexpr uid_t somebodyElse = 65'534;
    if (chown(qPrintable(everybodys), somebodyElse, somebodyElse) == 0) { // which only root may try
        installFrom();
        EXPECT_EQ(application().alerts.size(), 3U);
    }
    EXPECT_EQ(vouchedVersion(target), "1");
}

} // namespace
} // namespace quillory::test
