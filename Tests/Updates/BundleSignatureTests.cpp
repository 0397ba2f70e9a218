// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/FileTree.h"
#include "Platform/URLSession.h"
#include "Updates/SampleBundle.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

using platform::desktop::LinuxCodeSigning;
using platform::desktop::SigningKey;
using platform::desktop::TrustedKeys;

namespace quillory::test {
namespace {

using namespace Qt::StringLiterals;
class BundleSignature : public testing::Test {
  protected:
    BundleSignature() { makeSignedBundle(bundle, 2); }

    [[nodiscard]] QString in(const char *name) const { return bundle + u'/' + QString::fromUtf8(name); }
    [[nodiscard]] QByteArray path(const char *name) const { return QFile::encodeName(in(name)); }
    /// To the same content.
    void replaceByLink(const QString &path) const {
        QDir().rename(path, folder.filePath(u"elsewhere"_s));
        QFile::link(folder.filePath(u"elsewhere"_s), path);
    }
    /// The manifest as another one would like it, with the signature of the right one.
    void rewriteManifest(const QByteArray &before, const QByteArray &after) const {
        writeFile(in("Manifest"), contentOf(in("Manifest")).replace(before, after));
    }
    void signWith(const SigningKey &key, const QString &architecture = LinuxCodeSigning::hostArchitecture(),
                  const QString &identifier = platform::desktop::applicationIdentifier) const {
        platform::desktop::signBundle(bundle, u"2"_s, key, architecture, identifier);
    }

    QTemporaryDir folder{folderTemplate()};
    QString bundle = folder.filePath(u"Quillory.app"_s);
};

TEST_F(BundleSignature, VouchesForExactlyWhatWasSigned) {
    const struct {
        const char *attack;
        std::function<void()> change;
    } attacks[] = {
        {"a changed byte", [&] { writeFile(in("Info.json"), contentOf(in("Info.json")).replace('2', '3')); }},
        {"a missing file", [&] { QFile::remove(in("Info.json")); }},
        {"an extra file", [&] { writeFile(in("Resources/extra"), "x"); }},
        {"an extra empty folder", [&] { QDir().mkpath(in("Resources/more")); }},
        {"a mode turned set-uid", [&] { chmod(path("quillory").constData(), 04755); }},
        {"a mode that lets others write", [&] { chmod(path("Info.json").constData(), 0666); }},
        {"a mode turned executable", [&] { chmod(path("Info.json").constData(), 0755); }},
        {"a file that became a symbolic link to the same content", [&] { replaceByLink(in("Info.json")); }},
        {"a folder that became a symbolic link to the same content", [&] { replaceByLink(in("Resources")); }},
        {"a hard link to a file out of the bundle",
         [&] { ::link(path("Info.json").constData(), (folder.path().toUtf8() + "/other").constData()); }},
        {"a pipe in a file's place",
         [&] {
             QFile::remove(in("Info.json"));
             ::mkfifo(path("Info.json").constData(), 0644);
         }},
        {"a file in a folder's place",
         [&] {
             QDir(in("Resources")).removeRecursively();
             writeFile(in("Resources"), "", 0755);
         }},
        {"no signature", [&] { QFile::remove(in("Manifest.signature")); }},
        {"no manifest", [&] { QFile::remove(in("Manifest")); }},
        {"a manifest that was changed", [&] { rewriteManifest("version 2", "version 3"); }},
        {"a manifest with a line twice",
         [&] { rewriteManifest("folder 0755 Resources\n", "folder 0755 Resources\nfolder 0755 Resources\n"); }},
        {"the manifest of another bundle",
         [&] {
             makeSignedBundle(folder.filePath(u"Other.app"_s), 3);
             for (const char *name : {"Manifest", "Manifest.signature"}) {
                 writeFile(in(name), contentOf(folder.filePath(u"Other.app/"_s + QLatin1StringView(name))));
             }
         }},
        {"the key of nobody we know", [&] { signWith(SigningKey::generated(team)); }},
        {"the right key under another team's name",
         [&] { signWith(*SigningKey::parsed(teamKey().written().replace(team.toUtf8(), "OTHERTEAM1"))); }},
        {"another application", [&] { signWith(teamKey(), LinuxCodeSigning::hostArchitecture(), u"app.other"_s); }},
        {"another kind of machine", [&] { signWith(teamKey(), u"sparc64"_s); }},
        {"a manifest of 9 MB", [&] { writeFile(in("Manifest"), QByteArray(9 << 20, 'x')); }},
        {"a symbolic link to a genuine bundle", [&] { replaceByLink(bundle); }},
    };
    EXPECT_EQ(vouchedVersion(bundle), "2");
    for (const auto &[attack, change] : attacks) {
        QFile::remove(bundle); // the one that is a link
        QDir(folder.path()).removeRecursively();
        QDir().mkpath(folder.path());
        makeSignedBundle(bundle, 2);
        change();
        EXPECT_EQ(vouchedVersion(bundle), "none") << attack;
    }
}

TEST_F(BundleSignature, FollowsATeamFromKeyToKey) {
    const SigningKey second = SigningKey::generated(team);
    const SigningKey third = SigningKey::generated(team);
    const QByteArray toSecond = rotationStatement(teamKey(), second.publicKey());
    const QByteArray toThird = rotationStatement(second, third.publicKey());
    const QByteArray byAStranger = rotationStatement(third, third.publicKey());
    const struct {
        const char *what;
        QByteArray rotations;
        const SigningKey &key;
        std::string version;
    } cases[] = {
        {"one step", toSecond, second, "2"},
        {"two steps", toSecond + '\n' + toThird, third, "2"},
        {"the wrong way round", toThird + toSecond, third, "none"},
        {"the old key once it is no longer valid", toSecond, teamKey(), "none"},
        {"a statement that a stranger signed", byAStranger, third, "none"},
        {"a statement that was changed", QByteArray(toSecond).replace("\nteam Q", "\nteam R"), second, "none"},
        {"a statement that was cut", toSecond.chopped(30), second, "none"},
        {"no statement", "", second, "none"},
    };
    for (const auto &[what, rotations, key, version] : cases) {
        writeFile(in("UpdateKeys.rotations"), rotations);
        signWith(key);
        EXPECT_EQ(vouchedVersion(bundle), version) << what;
    }
    writeFile(in("UpdateKeys.rotations"), toSecond);
    const LinuxCodeSigning ofNewBundle = LinuxCodeSigning::ofBundle(bundle);
    QFile::remove(in("UpdateKeys.rotations"));
    signWith(second);
    EXPECT_TRUE(ofNewBundle.signingInformation(bundle, {})) << "its program has followed the statement";
    signWith(teamKey());
    EXPECT_FALSE(ofNewBundle.signingInformation(bundle, {})) << "and is through with the old key";
}

TEST_F(BundleSignature, CanBeGivenUpOnTheWay) {
    std::stop_source stop;
    double last = 0;
    const auto progress = [&](double done) {
        last = done;
        stop.request_stop();
    };
    EXPECT_THROW((void)trustingTeam().signingInformation(bundle, {stop.get_token(), progress}),
                 platform::CancellationError);
    EXPECT_THAT(last, testing::AllOf(testing::Gt(0.0), testing::Lt(1.0)));
}

TEST_F(BundleSignature, IsNotMadeForWhatNobodyShouldTrust) {
    chmod(path("quillory").constData(), 04755);
    EXPECT_THROW(signWith(teamKey()), platform::FileError);
    chmod(path("quillory").constData(), 0755);
    QFile::link(in("Info.json"), in("link"));
    EXPECT_THROW(signWith(teamKey()), platform::FileError);
    QFile::remove(in("link"));
    writeFile(in("two\nlines"), "");
    EXPECT_THROW(signWith(teamKey()), platform::FileError);
    QFile::remove(in("two\nlines"));
    EXPECT_NO_THROW(signWith(teamKey()));
    makeBundle(bundle, 3);
    EXPECT_THROW(signWith(teamKey()), platform::FileError) << "its program would call itself another version";
}

} // namespace
} // namespace quillory::test
