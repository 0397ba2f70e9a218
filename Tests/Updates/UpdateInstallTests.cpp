// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Updates/VersionHistory.h"
#include "Updates/UpdateStory.h"

#include <QDir>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillory::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class UpdateInstall : public UpdateStory {
  protected:
    [[nodiscard]] QByteArray zipOf(const QString &bundle, const QByteArray &name = "Quillory.app") const {
        ZipWriter zip;
        zip.addFolder(bundle, name);
        return zip.bytes();
    }
    [[nodiscard]] QString made(int version, const platform::desktop::SigningKey &key = teamKey()) const {
        const QString bundle = folder.filePath(QStringLiteral("made/Quillory.app"));
        QDir(bundle).removeRecursively();
        makeSignedBundle(bundle, version, key);
        return bundle;
    }
    /// Nothing of it may be left, and nothing have changed.
    void expectRefusal(const char *attack, const QString &description) {
        EXPECT_THAT(application().shown(), ElementsAre(QStringLiteral("Update failed|") + description)) << attack;
        EXPECT_THAT(desktop.log(), ElementsAre(QStringLiteral("update install failed: ") + description)) << attack;
        EXPECT_EQ(vouchedVersion(target), "1") << attack;
        EXPECT_THAT(temporaryFiles(), IsEmpty()) << attack;
        EXPECT_FALSE(application().isTerminated) << attack;
        EXPECT_EQ(tools.relaunched, QString()) << attack;
        application().alerts.clear();
        QFile::remove(desktop.process.logPath());
    }
};

const QString mismatch = QStringLiteral("update signature mismatch — refusing to install");
const QString notNewer = QStringLiteral("update is not newer than what has run here — refusing to install");
const QString unzipFailed = QStringLiteral("unzip failed");

TEST_F(UpdateInstall, PutsTheOfferedVersionInPlaceAndStartsIt) {
    announce(R"({"version": "2", "url": ")" + url(QStringLiteral("/Quillory.zip")).toEncoded() + "\"}");
    serve(archiveOf(2));
    checker.check(false);
    ASSERT_TRUE(awaitAlerts(1));
    application().answer(0);
    ASSERT_TRUE(desktop.mainQueue.runUntil([&] { return application().isTerminated; }));
    EXPECT_EQ(vouchedVersion(target), "2");
    EXPECT_THAT(desktop.log(), ElementsAre(QStringLiteral("update available: 2 (running 1)"),
                                           QStringLiteral("update installed, relaunching")));
    EXPECT_EQ(tools.relaunched, QStringLiteral("/Applications/Quillory.app"));
    EXPECT_THAT(application().works,
                ElementsAre(QStringLiteral("Downloading the update…"), QStringLiteral("Unpacking the update…"),
                            QStringLiteral("Checking the update…")));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(UpdateInstall, RefusesWhatIsNotGenuineOrNotNewer) {
    using platform::desktop::SigningKey;
    const QByteArray genuine = archiveOf(2);
    const QString extra = made(2);
    writeFile(extra + QStringLiteral("/extra"), "x");
    const QByteArray withExtra = zipOf(extra);
    const QString unsignedBundle = made(2);
    QFile::remove(unsignedBundle + QStringLiteral("/Manifest.signature"));
    const QByteArray notSigned = zipOf(unsignedBundle);
    ZipWriter inner;
    inner.add({"Quillory.zip", genuine});
    ZipWriter inFolder;
    inFolder.addFolder(made(2), "folder/Quillory.app");
    const struct {
        const char *attack;
        QByteArray archive;
        QString description;
    } attacks[] = {
        {"rollback", archiveOf(0), notNewer},
        {"equal version", archiveOf(1), notNewer},
        {"wrong key", zipOf(made(3, SigningKey::generated(team))), mismatch},
        {"another team", zipOf(made(3, SigningKey::generated(QStringLiteral("OTHERTEAM1")))), mismatch},
        {"no signature", notSigned, mismatch},
        {"an extra unsigned file", withExtra, mismatch},
        {"a zip in a zip", inner.bytes(), QStringLiteral("no app in update archive")},
        {"the application in a folder", inFolder.bytes(), QStringLiteral("no app in update archive")},
        {"missing end", genuine.chopped(40), unzipFailed},
        {"missing beginning", genuine.sliced(40), unzipFailed},
        {"an error page", "<html>", unzipFailed},
        {"nothing", "", unzipFailed},
    };
    for (const auto &[attack, archive, description] : attacks) {
        serve(archive);
        installFrom(QStringLiteral("/Quillory.zip"));
        expectRefusal(attack, description);
    }
}

TEST_F(UpdateInstall, RefusesWhatABrokenServerSends) {
    const QByteArray genuine = archiveOf(2);
    answers["/truncated"] = answerWith("200 OK", genuine).chopped(100);
    answers["/longer"] = "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n" + genuine;
    answers["/redirect"] = "HTTP/1.1 307 Moved\r\nLocation: http://192.0.2.1/\r\nContent-Length: 0\r\n\r\n";
    answers["/verbose"] =
        "HTTP/1.1 307 Moved\r\nLocation: /Quillory.zip\r\nContent-Length: 99999\r\n\r\n" + QByteArray(99'999, ' ');
    answers["/huge"] = "HTTP/1.1 200 OK\r\nContent-Length: 999999999999\r\n\r\n";
    const struct {
        QString path;
        QString description;
    } attacks[] = {
        {QStringLiteral("/truncated"), QStringLiteral("The connection to the server was lost.")},
        {QStringLiteral("/longer"), unzipFailed},
        {QStringLiteral("/redirect"), QStringLiteral("The address is not secure: it must begin with https://.")},
        {QStringLiteral("/verbose"), QStringLiteral("The answer is too long.")},
        {QStringLiteral("/huge"), QStringLiteral("The answer is too long.")},
        {QStringLiteral("/missing"), unzipFailed},
    };
    for (const auto &[path, description] : attacks) {
        installFrom(path);
        expectRefusal(qPrintable(path), description);
    }
}

TEST_F(UpdateInstall, NeverGoesBackBehindTheHighestVersionThatRan) {
    desktop.process.information[QStringLiteral("CFBundleShortVersionString")] = QStringLiteral("5");
    checker.startPeriodicChecks();
    ASSERT_TRUE(awaitLog(1));
    QFile::remove(desktop.process.logPath());
    desktop.process.information[QStringLiteral("CFBundleShortVersionString")] = QStringLiteral("1");
    serve(archiveOf(4));
    installFrom(QStringLiteral("/Quillory.zip"));
    expectRefusal("older than the highest", notNewer);
    serve(archiveOf(5));
    installFrom(QStringLiteral("/Quillory.zip"));
    EXPECT_EQ(vouchedVersion(target), "5") << "which ran already, and was lost since";
    // The same decides at a start.
    const VersionHistory history(desktop.process.homeDirectory());
    EXPECT_FALSE(history.permits(QStringLiteral("4"), QStringLiteral("1")));
    EXPECT_TRUE(history.permits(QStringLiteral("5"), QStringLiteral("1"))) << "which is the one that ran";
    EXPECT_FALSE(isFromOurTeam({QStringLiteral("OTHERTEAM1"), {}, QStringLiteral("6")}));
}

TEST_F(UpdateInstall, LeavesNothingWhenItIsCancelled) {
    checker.install(url(QStringLiteral("/endless")));
    ASSERT_TRUE(desktop.mainQueue.runUntil([&] { return !application().works.isEmpty(); }));
    checker.offerUpdate(QStringLiteral("3"), {}, url(QStringLiteral("/Quillory.zip")));
    checker.install(url(QStringLiteral("/Quillory.zip")));
    EXPECT_THAT(application().shown(), ElementsAre(QStringLiteral("Update failed|Another update is being installed.")));
    application().pressCancel();
    ASSERT_TRUE(desktop.mainQueue.runUntil([&] { return !application().hasProgress; }));
    EXPECT_THAT(desktop.log(), ElementsAre(QStringLiteral("update install failed: Another update is being installed."),
                                           QStringLiteral("update install cancelled")));
    EXPECT_EQ(application().alerts.size(), 1U);
    EXPECT_THAT(temporaryFiles(), IsEmpty());
    EXPECT_EQ(vouchedVersion(target), "1");
}

TEST_F(UpdateInstall, SaysThatTheDownloadCannotBeSaved) {
    serve(archiveOf(2));
    qputenv("TMPDIR", "/proc");
    installFrom(QStringLiteral("/Quillory.zip"));
    ASSERT_EQ(application().alerts.size(), 1U);
    EXPECT_THAT(application().alerts.front().body.toStdString(),
                testing::StartsWith("The download could not be saved: "));
    const QString everybodys = folder.filePath(QStringLiteral("everybodys"));
    QDir().mkpath(everybodys);
    chmod(qPrintable(everybodys), 0777);
    qputenv("TMPDIR", everybodys.toUtf8());
    installFrom(QStringLiteral("/Quillory.zip"));
    EXPECT_EQ(application().alerts.back().body,
              QStringLiteral("The folder %1 can be changed by others.").arg(everybodys));
    chmod(qPrintable(everybodys), 0755);
    constexpr uid_t somebodyElse = 65'534;
    if (chown(qPrintable(everybodys), somebodyElse, somebodyElse) == 0) { // which only root may try
        installFrom(QStringLiteral("/Quillory.zip"));
        EXPECT_EQ(application().alerts.size(), 3U);
        EXPECT_EQ(vouchedVersion(target), "1");
    }
    EXPECT_EQ(vouchedVersion(target), "1");
}

TEST_F(UpdateInstall, WaitsForNoOtherProcess) {
    serve(archiveOf(2));
    const QByteArray lock = target.toUtf8() + "/../.install.lock";
    const int held = open(lock.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    installFrom(QStringLiteral("/Quillory.zip"));
    expectRefusal("two at once", QStringLiteral("Another update is being installed."));
    close(held);
    QDir(target).removeRecursively();
    installFrom(QStringLiteral("/Quillory.zip"));
    EXPECT_EQ(vouchedVersion(target), "2") << "where nothing was installed, and the program runs from another place";
}

} // namespace
} // namespace quillory::test
