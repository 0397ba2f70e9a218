// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/Assistant.h"
#include "EndToEnd/Keyboard.h"
#include "Platform/Linux/Updates/ArchiveUnpacker.h"
#include "RealDesktop/AccessibleTree.h"
#include "RealDesktop/ChildProcess.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <httplib.h>

#include <csignal>
#include <thread>

namespace quillory::test {

using namespace Qt::StringLiterals;
namespace {

/// Runs a program and returns what it prints. Throws when the program fails.
QByteArray succeed(const QString &program, const QStringList &arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    if (!process.waitForFinished(60'000) || process.exitCode() != 0) {
        throw std::runtime_error("failed: " + program.toStdString());
    }
    return process.readAllStandardOutput();
}

void write(const QString &path, const QByteArray &text) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        throw std::runtime_error("cannot write " + path.toStdString());
    }
}

/// The maker's side: a key, packages of several versions of the program, and a server that announces one of them.
class Maker {
  public:
    Maker() {
        qputenv("SOURCE_DATE_EPOCH", "1700000000");
        qputenv("DEB_COMPRESSION", "none");
        const QString sign = QStringLiteral(QUILLORY_BUILD "/bin/quillory-sign");
        write(in("keys"), succeed(sign, {u"make-key"_s, QStringLiteral(QUILLORY_TEAM_ID), in("key")}));
        succeed(u"cmake"_s, {u"--install"_s, QStringLiteral(QUILLORY_BUILD), u"--prefix"_s, in("tree"), u"--strip"_s});
        QFile::copy(packageOf(u"2"_s, "archive"), in("Quillory.zip"));
        m_server.set_mount_point("/", m_folder.path().toStdString());
        m_port = m_server.bind_to_any_port("127.0.0.1");
        write(in("version.json"), R"({"version": "2", "notes": "Faster answers.", "url": ")" +
                                      QByteArray::fromStdString(address()) + "/Quillory.zip\"}");
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
    }
    ~Maker() {
        m_server.stop();
        m_thread.join();
    }
    Maker(const Maker &) = delete;
    Maker &operator=(const Maker &) = delete;

    [[nodiscard]] std::string address() const { return "http://127.0.0.1:" + std::to_string(m_port); }
    /// The path of a package of a version, which is made at the first call.
    QString packageOf(const QString &version, const char *kind) {
        const QString folder = m_folder.filePath(version + QLatin1StringView(kind));
        if (!QFileInfo::exists(folder)) {
            const QString bundle = m_folder.filePath(version + u"/Quillory.app"_s);
            QDir().mkpath(QFileInfo(bundle).path());
            succeed(script("make-bundle"), {in("tree"), version, in("keys"), bundle});
            succeed(QStringLiteral(QUILLORY_BUILD "/bin/quillory-sign"), {u"sign"_s, in("key"), version, bundle});
            succeed(script("make-packages"), {bundle, version, folder, QString::fromLatin1(kind)});
        }
        return folder + u'/' + QDir(folder).entryList(QDir::Files).value(0);
    }
    [[nodiscard]] QString in(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

  private:
    [[nodiscard]] static QString script(const char *name) {
        return QStringLiteral(QUILLORY_SOURCE "/Packaging/") + QLatin1StringView(name);
    }

    QTemporaryDir m_folder;
    httplib::Server m_server;
    int m_port = 0;
    std::thread m_thread;
};

/// The processes that run a program. The updated one is no child of the test.
std::vector<pid_t> processesOf(const QString &program) {
    std::vector<pid_t> found;
    for (const QString &name : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
        if (QFile::symLinkTarget(u"/proc/%1/exe"_s.arg(name)) == program) {
            found.push_back(name.toInt());
        }
    }
    return found;
}

bool end(const QString &program) {
    for (const pid_t process : processesOf(program)) {
        kill(process, SIGTERM);
    }
    return waitUntil([&] { return processesOf(program).empty(); });
}

class Update : public testing::Test {
  protected:
    Update() {
        qputenv("OPENROUTER_API_KEY", "made-up-key");
        // Qt's accessibility bridge leaks the release of a key whose window has closed, here that of Return.
        qputenv("LSAN_OPTIONS", qgetenv("LSAN_OPTIONS") + ":exitcode=0");
        qputenv("QUILLORY_UPDATE_FEED", QByteArray::fromStdString(maker.address()));
    }
    ~Update() override { end(updated); }

    /// Version 1 runs from its package: it finds version 2, the user agrees, and version 2 runs in its place.
    void expectUpdate(const QString &program) {
        succeed(program, {u"defaults"_s, u"write"_s, u"tone"_s, u"Friendly"_s});
        ChildProcess first({program.toStdString()});
        AccessibleTree tree;
        ASSERT_TRUE(waitUntil([&] { return tree.focusedName() == u"Install & Relaunch"_s; }, 30'000))
            << Assistant::log().toStdString();
        EXPECT_TRUE(waitUntil([&] { return tree.windowShows(first.pid(), u"Quillory 2 is available"_s); }));
        EXPECT_EQ(Assistant::timesLogged(u"update available: 2 (running 1)"_s), 1);
        keyboard::tap("Return");
        ASSERT_TRUE(waitUntil([&] { return !first.isRunning(); }, 30'000)) << Assistant::log().toStdString();
        EXPECT_EQ(first.end(), 0);
        ASSERT_TRUE(waitUntil([] { return Assistant::timesLogged(u"up to date (2)"_s) == 1; }, 30'000))
            << Assistant::log().toStdString();
        EXPECT_EQ(Assistant::timesLogged(u"update installed, relaunching"_s), 1);
        EXPECT_EQ(processesOf(updated).size(), 1U);
        EXPECT_EQ(succeed(updated, {u"defaults"_s, u"read"_s, u"tone"_s}).trimmed(), "Friendly");
        EXPECT_TRUE(end(updated));
    }

    Maker maker;
    QString applications = qEnvironmentVariable("XDG_DATA_HOME") + u"/quillory/Applications"_s;
    QString updated = applications + u"/Quillory.app/quillory"_s;
};

TEST_F(Update, TakesThePlaceOfTheBundleThatTheUserUnpacked) {
    QDir().mkpath(applications);
    platform::desktop::unpackZip(maker.packageOf(u"1"_s, "archive"), applications, {});
    QFile::setPermissions(applications, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    expectUpdate(updated);
}

TEST_F(Update, TakesPrecedenceOverTheDebianPackage) {
    succeed(u"dpkg-deb"_s, {u"-x"_s, maker.packageOf(u"1"_s, "deb"), maker.in("root")});
    const QString installed = maker.in("root") + u"/usr/bin/quillory"_s;
    expectUpdate(installed);
    const ChildProcess again({installed.toStdString()});
    EXPECT_TRUE(waitUntil([] { return Assistant::timesLogged(u"up to date (2)"_s) == 2; }, 30'000))
        << Assistant::log().toStdString();
}

} // namespace
} // namespace quillory::test
