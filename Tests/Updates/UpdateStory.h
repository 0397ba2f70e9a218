// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Network/CurlURLSession.h"
#include "Platform/Linux/Updates/LinuxFileSystem.h"
#include "Platform/Linux/Updates/LinuxSystemTools.h"
#include "Quillory/Updates/UpdateChecker.h"
#include "SimulatedDesktop/SimulatedDesktop.h"
#include "Threaded/LoopbackServer.h"
#include "Updates/SampleBundle.h"

#include <gmock/gmock.h>

#include <map>

namespace quillory::test {

using namespace Qt::StringLiterals;

/// The real tools, except that a relaunch is only noted.
class NotingTools final : public platform::SystemTools {
  public:
    [[nodiscard]] bool unpackArchive(const QString &archive, const QString &folder,
                                     const std::stop_token &stop) override {
        return m_real.unpackArchive(archive, folder, stop);
    }
    void relaunchAfterExit(const QString &application) override { relaunched = application; }
    QString relaunched;

  private:
    platform::desktop::LinuxSystemTools m_real;
};

/// Version 1 runs and is installed, among a simulated user's real files and with a real server at its maker's.
class UpdateStory : public testing::Test {
  protected:
    UpdateStory();
    ~UpdateStory() override;

    /// What the server sends for a path, from its status line on.
    std::map<QByteArray, QByteArray> answers;
    void announce(const QByteArray &feed) { answers["/version.json"] = answerWith("200 OK", feed); }
    void serve(const QByteArray &archive) { answers["/Quillory.zip"] = answerWith("200 OK", archive); }
    [[nodiscard]] QUrl url(const QString &path) const;
    /// An archive with a signed bundle of that version.
    [[nodiscard]] QByteArray archiveOf(int version) const;

    [[nodiscard]] SimulatedApplication &application() { return desktop.application; }
    /// Lets the main thread work until so many alerts have been shown in all.
    [[nodiscard]] bool awaitAlerts(std::size_t count);
    [[nodiscard]] bool awaitLog(qsizetype lines);
    /// Starts an install and waits for its end, which it may bring about itself.
    void installFrom(const QString &path);
    /// The names of what stands among the temporary files.
    [[nodiscard]] QStringList temporaryFiles() const;

    QTemporaryDir folder{folderTemplate()};
    SimulatedDesktop desktop;
    NotingTools tools;
    QString target = folder.filePath(u"data/quillory/Applications/Quillory.app"_s);

  private:
    void answer(LoopbackConnection &connection);

    LoopbackServer m_server{[this](LoopbackConnection &connection) { answer(connection); }};
    platform::desktop::CurlURLSession m_urlSession;
    platform::desktop::LinuxCodeSigning m_codeSigning = trustingTeam();
    platform::desktop::LinuxFileSystem m_fileSystem{m_codeSigning};

  protected:
    UpdateChecker checker{
        {desktop.application, m_codeSigning, m_fileSystem, desktop.mainQueue, desktop.process, tools, m_urlSession}};
};

} // namespace quillory::test
