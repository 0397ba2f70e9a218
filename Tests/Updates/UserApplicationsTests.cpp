// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Folders.h"
#include "Platform/Linux/Updates/LinuxInstallation.h"
#include "Platform/Linux/Updates/UserApplications.h"
#include "Quillory/Updates/VersionHistory.h"
#include "RealDesktop/ChildProcess.h"
#include "Updates/SampleBundle.h"
#include "Updates/TracedChild.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillory::test {
namespace {

using namespace Qt::StringLiterals;
using platform::FileError;
using platform::desktop::LinuxInstallation;
using platform::desktop::SigningKey;
using testing::HasSubstr;
using testing::Not;

class UserApplications : public testing::Test {
  protected:
    UserApplications() {
        qputenv("XDG_DATA_HOME", folder.path().toUtf8());
        platform::desktop::folders::make(own);
        makeSignedBundle(installed, 2);
    }
    ~UserApplications() override { qunsetenv("XDG_DATA_HOME"); }

    [[nodiscard]] QByteArray preferred(const QString &running) const {
        return platform::desktop::applications::programToPrefer(
            running, [](const platform::SigningInformation &bundle, const QString &version) {
                return isNewer(bundle.version, version);
            });
    }

    /// Version 3, signed.
    void makeWithProgram(const QByteArray &script) const {
        writeFile(own + u"/quillory"_s, "#!/bin/sh\n" + script + '\n', 0755);
        platform::desktop::signBundle(own, u"3"_s, teamKey());
    }

    platform::desktop::LinuxCodeSigning signing = trustingTeam();
    LinuxInstallation installation{signing};
    QTemporaryDir folder{folderTemplate()};
    QString own = folder.filePath(u"quillory/Applications/Quillory.app"_s);
    QString installed = folder.filePath(u"usr/lib/quillory/Quillory.app"_s);
};

TEST_F(UserApplications, RunInPlaceOfAnOlderInstalledOneWhenTheyAreGenuine) {
    const QByteArray ownProgram = own.toUtf8() + "/quillory";
    const struct {
        const char *what;
        std::function<void()> change;
        bool isPreferred;
    } cases[] = {
        {"newer", [] {}, true},
        {"older", [&] { makeSignedBundle(own, 1); }, false},
        {"unsigned", [&] { QFile::remove(own + u"/Manifest.signature"_s); }, false},
        {"of another key", [&] { makeSignedBundle(own, 3, SigningKey::generated(team)); }, false},
        {"changed since", [&] { writeFile(own + u"/quillory"_s, "#!/bin/sh", 0755); }, false},
        {"slow to start", [&] { makeWithProgram("sleep 0.4"); }, true},
        {"slow to fail", [&] { makeWithProgram("sleep 0.4; exit 127"); }, false},
        {"hanging", [&] { makeWithProgram("sleep 60"); }, false},
        {"without functions that are looked for late", [&] { makeWithProgram("exit $((1 - LD_BIND_NOW))"); }, true},
        {"in a folder that others can change", [&] { chmod(qPrintable(own), 0777); }, false},
        {"left half way where names cannot be exchanged", [&] { QDir().rename(own, own + u".previous"_s); }, true},
        {"none", [&] { QDir(own).removeRecursively(); }, false},
    };
    for (const auto &[what, change, isPreferred] : cases) {
        QDir(own).removeRecursively();
        makeSignedBundle(own, 3);
        change();
        EXPECT_EQ(preferred(installed), isPreferred ? ownProgram : QByteArray()) << what;
    }
    makeSignedBundle(own, 3);
    EXPECT_EQ(preferred(own), "") << "it runs already";
    QFile::remove(installed + u"/Manifest"_s);
    EXPECT_EQ(preferred(installed), "") << "a program that was just built runs itself";
}

TEST_F(UserApplications, AreMadeInFreshFoldersOnly) {
    const QString first = installation.makeWorkFolder(u"QuilloryUpdate-"_s);
    const QString second = installation.makeWorkFolder(u"QuilloryUpdate-"_s);
    EXPECT_NE(first, second) << "nobody can make one before";
    EXPECT_EQ(QFile::permissions(first) & QFile::Permissions(0x77), QFile::Permissions());
    installation.removeItem(first);
    installation.removeItem(second);
    EXPECT_FALSE(QFile::exists(first));
}

TEST_F(UserApplications, AreOpenedDetachedFromWhatEndsOrTheFailureIsReported) {
    const QString seen = folder.filePath(u"seen"_s);
    const QByteArray script = "#!/bin/sh\n(readlink /proc/$$/fd/*; cut -d' ' -f4,6 /proc/$$/stat) >" + seen.toUtf8() +
                              ".new; mv " + seen.toUtf8() + ".new " + seen.toUtf8() + '\n';
    makeBundle(own, 3);
    writeFile(own + u"/quillory"_s, script, 0755);
    ASSERT_EQ(runForked([&] {
                  (void)open(qPrintable(own + u"/Info.json"_s), O_RDONLY); // inherited, unless somebody sees to it
                  installation.relaunchAfterExit(u"/Applications/Quillory.app"_s);
                  return 0;
              }),
              0);
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(seen); }));
    const std::string found = contentOf(seen).toStdString();
    EXPECT_THAT(found, HasSubstr("/dev/null\n/dev/null\n"));
    EXPECT_THAT(found, Not(HasSubstr("Info.json")));
    EXPECT_THAT(found, Not(HasSubstr(' ' + std::to_string(getsid(0)) + '\n'))) << "it has a session of its own";
    QFile::setPermissions(own + u"/quillory"_s, QFile::ReadOwner);
    EXPECT_THROW(installation.relaunchAfterExit(u"/Applications/Quillory.app"_s), FileError);
}

} // namespace
} // namespace quillory::test
