// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Records/FileLog.h"
#include "Quillory/RewriteError.h"
#include "Quillory/Updates/UpdateChecker.h"
#include "Quillory/Updates/UpdateState.h"

#include <QUuid>

#include <algorithm>

namespace quillory::UpdateChecker {

namespace {
const QString installedApplication = QStringLiteral("/Applications/Quillory.app");
const QString expectedTeam = QStringLiteral(QUILLORY_TEAM_ID);
constexpr qint64 longestArchive = qint64{256} << 20;

/// A file or folder that goes with this object.
class Temporary {
  public:
    explicit Temporary(const QString &path) : m_path(path) {}
    ~Temporary() { platform::current().fileSystem.removeItem(m_path); }
    Temporary(const Temporary &) = delete;
    Temporary &operator=(const Temporary &) = delete;
    [[nodiscard]] const QString &path() const { return m_path; }

  private:
    QString m_path;
};

/// One install, on its own thread.
class Installing {
  public:
    Installing(QUrl archive, std::stop_token stop, std::weak_ptr<bool> life)
        : m_archive(std::move(archive)), m_stop(std::move(stop)), m_life(std::move(life)) {}

    void run() const {
        const Temporary archive(downloaded());
        platform::current().fileSystem.hold(archive.path());
        const Temporary work(platform::current().fileSystem.temporaryDirectory() + u'/' + updateWorkName +
                             QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper());
        platform::current().fileSystem.createDirectory(work.path());
        show(QStringLiteral("Unpacking the update…"), std::nullopt);
        if (!platform::current().systemTools.unpackArchive(archive.path(), work.path(), m_stop)) {
            throw RewriteError::badResponse(QStringLiteral("unzip failed"));
        }
        const QString application = applicationIn(work.path());
        approve(application);
        platform::current().fileSystem.replaceItem(
            installedApplication, application, [this](const QString &bundle) { approve(bundle); }, m_stop);
        FileLog::log(QStringLiteral("update installed, relaunching"));
        platform::current().systemTools.relaunchAfterExit(installedApplication);
    }

  private:
    [[nodiscard]] QString downloaded() const {
        platform::URLRequest request;
        request.url = m_archive;
        request.longestBody = longestArchive;
        request.followsRedirects = true;
        const auto progress = [this](qint64 received, std::optional<qint64> expected) {
            const bool isKnown = expected && *expected > 0;
            show(QStringLiteral("Downloading the update…"),
                 isKnown ? std::optional(static_cast<double>(received) / static_cast<double>(*expected))
                         : std::nullopt);
        };
        return platform::current().urlSession.download(request, progress, m_stop);
    }
    [[nodiscard]] static QString applicationIn(const QString &folder) {
        const QStringList names = platform::current().fileSystem.contentsOfDirectory(folder);
        const auto found =
            std::ranges::find_if(names, [](const QString &name) { return name.endsWith(QStringLiteral(".app")); });
        if (found == names.end()) {
            throw RewriteError::badResponse(QStringLiteral("no app in update archive"));
        }
        return folder + u'/' + *found;
    }
    /// Throws unless a bundle is ours and brings the user forward.
    void approve(const QString &bundle) const {
        const auto progress = [this](double done) { show(QStringLiteral("Checking the update…"), done); };
        const auto found = platform::current().codeSigning.signingInformation(bundle, {m_stop, progress});
        if (!found || found->teamIdentifier != expectedTeam) {
            throw RewriteError::badResponse(QStringLiteral("update signature mismatch — refusing to install"));
        }
        if (!isNewer(found->version, currentVersion()) ||
            isNewer(versionHistory::highest(platform::current().process.homeDirectory()), found->version)) {
            throw RewriteError::badResponse(
                QStringLiteral("update is not newer than what has run here — refusing to install"));
        }
    }
    /// Not more often than anybody can see.
    void show(const QString &work, std::optional<double> done) const {
        const int percent = done ? static_cast<int>(*done * 100) : -1;
        if (work == m_shown && percent == m_percent) {
            return;
        }
        m_shown = work;
        m_percent = percent;
        onMainThread(m_life, [work, done] {
            if (updateState().progress) {
                updateState().progress->show(work, done);
            }
        });
    }

    QUrl m_archive;
    std::stop_token m_stop;
    std::weak_ptr<bool> m_life;
    mutable QString m_shown;
    mutable int m_percent = -1;
};

void logFailure(const QString &description) {
    FileLog::log(QStringLiteral("update install failed: ") + description);
}

void reportOutcome(const std::optional<QString> &failure) {
    updateState().progress.reset();
    if (failure) {
        showAlert(QStringLiteral("Update failed"), *failure);
    }
}

/// Before there was an install to show the progress of.
void refuse(const QString &description) {
    logFailure(description);
    showAlert(QStringLiteral("Update failed"), description);
}

void carryOut(const QUrl &archive, const std::stop_token &stop, const std::weak_ptr<bool> &life) {
    std::optional<QString> failure;
    try {
        Installing(archive, stop, life).run();
        onMainThread(life, [] { platform::current().application.terminate(); });
    } catch (...) {
        failure = descriptionOfCurrentError();
        if (failure) {
            logFailure(*failure);
        } else {
            FileLog::log(QStringLiteral("update install cancelled"));
        }
    }
    onMainThread(life, [failure] { reportOutcome(failure); });
}
} // namespace

void install(const QUrl &archive) {
    UpdateState &state = updateState();
    if (state.progress) {
        refuse(QStringLiteral("Another update is being installed."));
        return;
    }
    const auto task = state.tasks->start(
        [archive, life = std::weak_ptr(state.life)](const std::stop_token &stop) { carryOut(archive, stop, life); });
    if (!task) {
        refuse(QStringLiteral("The system has no thread to give."));
        return;
    }
    state.progress = platform::current().application.showProgress(QStringLiteral("Updating Quillory"),
                                                                  [task = *task]() mutable { task.cancel(); });
}

bool takesPrecedence(const platform::SigningInformation &bundle, const QString &running, const QString &home) {
    return bundle.teamIdentifier == expectedTeam && isNewer(bundle.version, running) &&
           !isNewer(versionHistory::highest(home), bundle.version);
}

std::optional<QString> teamID(const QString &bundle) {
    const auto found = platform::current().codeSigning.signingInformation(bundle, {});
    return found ? std::optional(found->teamIdentifier) : std::nullopt;
}

} // namespace quillory::UpdateChecker
