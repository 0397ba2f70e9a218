// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Updates/UpdateInstall.h"

#include "Quillory/Records/FileLog.h"
#include "Quillory/RewriteError.h"
#include "Quillory/Updates/VersionHistory.h"

#include <QDir>

namespace quillory {

namespace {
const QString installedApplication = QStringLiteral("/Applications/Quillory.app");
constexpr qint64 longestArchive = qint64{256} << 20;

/// The path of the application in a folder.
QString applicationIn(const QString &folder) {
    const auto everything = QDir::AllEntries | QDir::Hidden | QDir::CaseSensitive;
    const QStringList names = QDir(folder).entryList({QStringLiteral("*.app")}, everything);
    if (names.isEmpty()) {
        throw RewriteError::badResponse(QStringLiteral("no app in update archive"));
    }
    return folder + u'/' + names.first();
}

/// A file or folder that is removed with this object.
class Temporary {
  public:
    Temporary(platform::Installation &installation, const QString &path) : m_installation(installation), m_path(path) {}
    ~Temporary() { m_installation.removeItem(m_path); }
    Temporary(const Temporary &) = delete;
    Temporary &operator=(const Temporary &) = delete;
    [[nodiscard]] const QString &path() const { return m_path; }

  private:
    platform::Installation &m_installation;
    QString m_path;
};
} // namespace

QString currentVersion(const platform::Process &process) {
    return process.infoDictionaryString(QStringLiteral("CFBundleShortVersionString")).value_or(QStringLiteral("0"));
}

bool isFromOurTeam(const platform::SigningInformation &bundle) {
    return bundle.teamIdentifier == QStringLiteral(QUILLORY_TEAM_ID);
}

UpdateInstall::UpdateInstall(const platform::UpdateServices &services, QUrl archive, Progress progress,
                             std::stop_token stop)
    : m_services(services), m_archive(std::move(archive)), m_progress(std::move(progress)), m_stop(std::move(stop)) {}

void UpdateInstall::run() {
    platform::Installation &installation = m_services.installation;
    const Temporary archive(installation, downloaded());
    installation.hold(archive.path());
    const Temporary work(installation, installation.makeWorkFolder(updateWorkName));
    show(QStringLiteral("Unpacking the update…"), std::nullopt);
    if (!installation.unpackArchive(archive.path(), work.path(), m_stop)) {
        throw RewriteError::badResponse(QStringLiteral("unzip failed"));
    }
    const QString application = applicationIn(work.path());
    approve(application);
    installation.replaceItem(
        installedApplication, application, [this](const QString &bundle) { approve(bundle); }, m_stop);
    FileLog::log(QStringLiteral("update installed, relaunching"));
    installation.relaunchAfterExit(installedApplication);
}

QString UpdateInstall::downloaded() {
    platform::URLRequest request;
    request.url = m_archive;
    request.longestBody = longestArchive;
    request.followsRedirects = true;
    const auto progress = [this](qint64 received, std::optional<qint64> expected) {
        const bool isKnown = expected && *expected > 0;
        show(QStringLiteral("Downloading the update…"),
             isKnown ? std::optional(static_cast<double>(received) / static_cast<double>(*expected)) : std::nullopt);
    };
    return m_services.urlSession.download(request, progress, m_stop);
}

/// Throws unless a bundle is ours and newer than everything that has run here.
void UpdateInstall::approve(const QString &bundle) {
    const auto progress = [this](double done) { show(QStringLiteral("Checking the update…"), done); };
    const auto found = m_services.codeSigning.signingInformation(bundle, {m_stop, progress});
    if (!found || !isFromOurTeam(*found)) {
        throw RewriteError::badResponse(QStringLiteral("update signature mismatch — refusing to install"));
    }
    const VersionHistory history(m_services.process.homeDirectory());
    if (!history.permits(found->version, currentVersion(m_services.process))) {
        throw RewriteError::badResponse(
            QStringLiteral("update is not newer than what has run here — refusing to install"));
    }
}

void UpdateInstall::show(const QString &work, std::optional<double> done) {
    const int percent = done ? static_cast<int>(*done * 100) : -1;
    if (work != m_shown || percent != m_percent) {
        m_shown = work;
        m_percent = percent;
        m_progress(work, done);
    }
}

} // namespace quillory
