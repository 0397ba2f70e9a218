// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Linux/XClient.h"
#include "Platform/Linux/Applications/LinuxWorkspace.h"
#include "Platform/Linux/Process/LinuxProcess.h"
#include "Platform/Linux/X11/X11Windows.h"
#include "SimulatedDesktop/SimulatedProcess.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <csignal>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillory::test {

using namespace Qt::StringLiterals;

using namespace platform::desktop;

namespace {
QString put(const QTemporaryDir &folder, const QString &name, const QByteArray &content) {
    QString path = folder.filePath(name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    return path;
}

/// A program of another name that does as the one on the PATH does.
std::string copyOf(const char *program, const QTemporaryDir &folder, const QString &name) {
    const QString path = folder.filePath(name);
    EXPECT_TRUE(QFile::copy(u"/usr/bin/"_s + QLatin1StringView(program), path));
    return path.toStdString();
}

QString identifier(LinuxWorkspace &workspace, pid_t pid) {
    const auto application = workspace.runningApplication(pid);
    return application ? application->bundleIdentifier.value_or(u"(none)"_s) : u"(not running)"_s;
}
} // namespace

TEST(Applications, UserLinesComeFirstAndBadOnesAreNamed) {
    const QTemporaryDir folder;
    const QString file = put(folder, u"applications.conf"_s,
                             "\xef\xbb\xbf# mine\r\n"
                             "firefox = net.whatsapp.mine\r\n"
                             "  my app.desktop=com.example.app  \n\n"
                             "no identifier\n"
                             "x = nodots\n"
                             "= a.b\n"
                             "y = a..b\n"
                             "z = a.\xff\n"
                             "a=b = c.d\n");
    testing::internal::CaptureStderr();
    const ApplicationCatalogue catalogue(file);
    const QByteArray said = QByteArray::fromStdString(testing::internal::GetCapturedStderr());
    EXPECT_EQ(said.count('\n'), 5) << said.data();
    for (const char line : {'5', '6', '7', '8', '9'}) {
        EXPECT_TRUE(said.contains(file.toUtf8() + ", line " + line + ' ')) << line << said.data();
    }
    EXPECT_EQ(catalogue.bundleIdentifier({u"chromium"_s, u"firefox"_s}), u"net.whatsapp.mine"_s);
    EXPECT_EQ(catalogue.bundleIdentifier({u"my app"_s}), u"com.example.app"_s);
    EXPECT_EQ(catalogue.bundleIdentifier({u"a=b"_s}), u"c.d"_s);
    EXPECT_EQ(catalogue.bundleIdentifier({u"nothing"_s, u"msedge"_s}), u"com.microsoft.edgemac"_s);
    EXPECT_EQ(catalogue.bundleIdentifier({u"x"_s}), std::nullopt);
    EXPECT_TRUE(parseApplicationLines(builtInApplications()).badLines.isEmpty());
}

TEST(Applications, ProcessesAreRecognised) {
    const QTemporaryDir folder;
    put(folder, u"applications/firefox.desktop"_s, "[Desktop Entry]\nType=Application\nName=Fire\n");
    LinuxWorkspace workspace(nullptr, ApplicationCatalogue(QString()), {folder.filePath(u"applications/"_s)});

    ChildProcess browser({copyOf("sleep", folder, u"firefox"_s), "1000"});
    EXPECT_TRUE(waitUntil([&] { return identifier(workspace, browser.pid()) == u"org.mozilla.firefox"_s; }));
    EXPECT_EQ(workspace.runningApplication(browser.pid())->localizedName, u"Fire"_s);
    QFile::remove(folder.filePath(u"firefox"_s));
    EXPECT_EQ(identifier(workspace, browser.pid()), u"org.mozilla.firefox"_s) << "replaced by an update";
    browser.end();
    EXPECT_EQ(identifier(workspace, browser.pid()), u"(not running)"_s);

    ChildProcess unknown({copyOf("sleep", folder, u"editor"_s), "1000"});
    EXPECT_TRUE(waitUntil([&] { return workspace.runningApplication(unknown.pid())->localizedName == u"editor"_s; }));
    EXPECT_EQ(identifier(workspace, unknown.pid()), u"(none)"_s);

    const QString packed = put(folder, u"whatsdesk/resources/app.asar"_s, "");
    const ChildProcess wrapper({copyOf("tail", folder, u"electron22"_s), "-f", packed.toStdString()});
    EXPECT_TRUE(waitUntil([&] { return identifier(workspace, wrapper.pid()) == u"net.whatsapp.whatsdesk"_s; }));

    for (const qint32 nobody : {0, -1, 0x7fffffff}) {
        EXPECT_FALSE(workspace.runningApplication(nobody)) << nobody;
    }
}

TEST(Applications, SandboxesTellWhoIsInThem) {
    const QTemporaryDir root;
    const pid_t sandboxed = ::fork();
    if (sandboxed == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const bool mayChangeRoot = ::geteuid() == 0 || ::unshare(CLONE_NEWUSER) == 0;
        ::_exit(mayChangeRoot && ::chroot(root.path().toLocal8Bit().constData()) == 0 ? ::pause() : 1);
    }
    const auto link = u"/proc/%1/root"_s.arg(sandboxed);
    if (!waitUntil([&] { return QFile::symLinkTarget(link) == QFileInfo(root.path()).canonicalFilePath(); }, 2000)) {
        GTEST_SKIP() << "this user may not change the root of a process";
    }
    const auto identifierNow = [sandboxed] {
        LinuxWorkspace workspace(nullptr, ApplicationCatalogue(QString()), {});
        return identifier(workspace, sandboxed).toStdString();
    };
    put(root, u".flatpak-info"_s, "[Application]\nname=com.microsoft.Edge\nruntime=runtime/a/b/c\n");
    EXPECT_EQ(identifierNow(), "com.microsoft.edgemac");
    QFile::remove(root.filePath(u".flatpak-info"_s));
    ASSERT_EQ(::mkfifo(root.filePath(u".flatpak-info"_s).toLocal8Bit().constData(), 0600), 0);
    EXPECT_EQ(identifierNow(), "(none)") << "a pipe must not be waited for";
}

TEST(Applications, AProcessThatChangesIsSeenAnew) {
    const QTemporaryDir folder;
    LinuxWorkspace workspace(nullptr, ApplicationCatalogue(QString()), {});
    const std::string shell = copyOf("dash", folder, u"chromium"_s);
    const std::string viewer = copyOf("sleep", folder, u"WebKitWebProcess"_s);
    const std::string go = folder.filePath(u"go"_s).toStdString();
    const std::string next = copyOf("dash", folder, u"wasistlos"_s);
    const std::string child = folder.filePath(u"child"_s).toStdString();
    const std::string work = viewer + " 1000 & echo $! > " + child + "; while :; do sleep 1; done";
    const ChildProcess process(
        {shell, "-c", "until [ -e " + go + " ]; do sleep 0.02; done; exec " + next + " -c '" + work + "'"});
    EXPECT_TRUE(waitUntil([&] { return identifier(workspace, process.pid()) == u"org.chromium.Chromium"_s; }));
    put(folder, u"go"_s, "");
    EXPECT_TRUE(waitUntil([&] { return identifier(workspace, process.pid()) == u"net.whatsapp.wasistlos"_s; }));

    qint32 pid = 0;
    ASSERT_TRUE(waitUntil([&] { return (pid = contentOf(QString::fromStdString(child)).trimmed().toInt()) > 0; }));
    EXPECT_TRUE(waitUntil([&] { return identifier(workspace, pid) == u"net.whatsapp.wasistlos"_s; }))
        << "a page process counts as the program that it serves";
    ::kill(pid, SIGTERM);
}

TEST(Applications, DesktopEntriesAreReadInTheUsersLanguage) {
    const QByteArray text = "[Other]\nName=No\n[Desktop Entry]\nType=Application\nName = Web\nName[pt]=Rede\n";
    EXPECT_EQ(nameInDesktopEntry(text, u"pt_BR"_s), u"Rede"_s);
    EXPECT_EQ(nameInDesktopEntry(text, u"C"_s), u"Web"_s);
    for (const char *broken : {"[Desktop Entry]\nType=Link\nName=x\n", "[Desktop Entry]\nType=Application\nName", ""}) {
        EXPECT_EQ(nameInDesktopEntry(broken, u"C"_s), std::nullopt) << broken;
    }
}

TEST(Applications, ActivationBringsTheProcessToTheFront) {
    XClient client;
    const auto connection = X11Connection::open();
    X11Windows windows(*connection);
    const auto isInFront = [&](qint32 pid) {
        return waitUntil([&] { return windows.active().value_or(ActiveWindow{}).pid == pid; });
    };
    for (const qint32 pid : {111, 222}) {
        client.setNumbers(client.open({0, 0, 200, 100}), "_NET_WM_PID", {static_cast<std::uint32_t>(pid)});
        ASSERT_TRUE(isInFront(pid));
    }
    LinuxWorkspace workspace(&windows);
    workspace.activate(333);
    EXPECT_EQ(windows.active()->pid, 222);
    workspace.activate(111);
    EXPECT_TRUE(isInFront(111));
}

TEST(LinuxProcess, KnowsItsInformationAndMakesItsFolders) {
    const QTemporaryDir folder;
    const QString home = folder.filePath(u"data/quillory"_s);
    const QString info = put(folder, u"Info.json"_s, R"({"EmbeddedAPIKey": "k\u0000é", "number": 1, "none": null})");
    const LinuxProcess process(info, home);
    EXPECT_EQ(process.infoDictionaryString(u"EmbeddedAPIKey"_s), u"k\0é"_s);
    EXPECT_EQ(process.infoDictionaryString(u"number"_s), std::nullopt);
    for (const QString &made : {u"/Library/Logs"_s, u"/Library/Application Support"_s}) {
        EXPECT_EQ(QFile::permissions(home + made) & QFile::Permissions(0x77), QFile::Permissions())
            << made.toStdString();
    }
    const LinuxProcess broken(put(folder, u"Info.json"_s, "[]"), home);
    EXPECT_EQ(broken.infoDictionaryString(u"EmbeddedAPIKey"_s), std::nullopt);
}

} // namespace quillory::test
