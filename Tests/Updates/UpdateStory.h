// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Folders.h"
#include "Platform/Linux/Network/CurlURLSession.h"
#include "Platform/Linux/Updates/LinuxInstallation.h"
#include "Quillory/Updates/UpdateChecker.h"
#include "RealDesktop/ChildProcess.h"
#include "SimulatedDesktop/SimulatedDesktop.h"
#include "Threaded/LoopbackServer.h"
#include "Updates/SampleBundle.h"

#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <map>

namespace quillory::test {

using namespace Qt::StringLiterals;

/// The real thing, except that a relaunch is only noted.
class NotingInstallation final : public platform::desktop::LinuxInstallation {
  public:
    using LinuxInstallation::LinuxInstallation;
    void relaunchAfterExit(const QString &application) override { relaunched = application; }
    QString relaunched;
};

/// Version 1 runs and is installed, among a simulated user's real files and with a real server at its maker's.
class UpdateStory : public testing::Test {
  protected:
    UpdateStory() {
        const QString temporary = folder.filePath(u"tmp"_s);
        QDir().mkpath(temporary);
        qputenv("XDG_DATA_HOME", folder.filePath(u"data"_s).toUtf8());
        qputenv("TMPDIR", temporary.toUtf8());
        platform::desktop::folders::make(target);
        makeSignedBundle(target, 1);
        desktop.process.information[u"CFBundleShortVersionString"_s] = u"1"_s;
        desktop.process.variables[u"QUILLORY_UPDATE_FEED"_s] = url({}).toString();
    }
    ~UpdateStory() override {
        qunsetenv("XDG_DATA_HOME");
        qunsetenv("TMPDIR");
    }

    void announce(const QByteArray &feed) { answers["/version.json"] = answerWith("200 OK", feed); }
    [[nodiscard]] QUrl url(const QString &path) const {
        QUrl url = server.url();
        url.setQuery(QString());
        url.setPath(path);
        return url;
    }

    [[nodiscard]] SimulatedApplication &application() { return desktop.application; }
    /// Lets the main thread work until so many alerts have been shown in all.
    [[nodiscard]] bool awaitAlerts(std::size_t count) {
        return desktop.mainQueue.runUntil([&] { return application().alerts.size() >= count; });
    }
    [[nodiscard]] bool awaitLog(qsizetype lines) {
        // A line is written without telling the main thread.
        return waitUntil([&] {
            desktop.advance(0);
            return desktop.log().size() >= lines;
        });
    }
    /// The names of what stands among the temporary files.
    [[nodiscard]] QStringList temporaryFiles() const {
        return QDir(folder.filePath(u"tmp"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    void answer(LoopbackConnection &connection) {
        const QByteArray path = connection.readRequest().split(' ').value(1);
        const bool isEndless = path == "/endless";
        const auto found = answers.find(path);
        connection.send(isEndless ? "HTTP/1.1 200 OK\r\n\r\n"
                                  : (found == answers.end() ? answerWith("404 Not Found", "<html>") : found->second));
        while (isEndless && connection.send(QByteArray(1 << 16, 'x'))) {
        }
    }

    /// What the server sends for a path, from its status line on.
    std::map<QByteArray, QByteArray> answers;
    QTemporaryDir folder{folderTemplate()};
    SimulatedDesktop desktop;
    QString target = folder.filePath(u"data/quillory/Applications/Quillory.app"_s);
    LoopbackServer server{[this](LoopbackConnection &connection) { answer(connection); }};
    platform::desktop::CurlURLSession urlSession;
    platform::desktop::LinuxCodeSigning codeSigning = trustingTeam();
    NotingInstallation installation{codeSigning};
    UpdateChecker checker{
        {desktop.application, codeSigning, installation, desktop.mainQueue, desktop.process, urlSession}};
};

} // namespace quillory::test
