// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Updates/UpdateChecker.h"

#include "Quillory/Records/FileLog.h"
#include "Quillory/Updates/VersionHistory.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace quillory {

using namespace std::chrono_literals;

namespace {
constexpr auto checkInterval = 21'600s;
constexpr auto feedTimeout = 15s;
constexpr auto longestCheck = 60s; // all redirects included
constexpr qint64 longestFeed = 1 << 20;
const QString noThread = QStringLiteral("The system could not start another thread.");

/// A version as it is shown and logged: text from the network must stay on one line, and short.
QString shown(const QString &version) {
    constexpr qsizetype longestVersion = 64;
    QString line = version.first(std::min(version.size(), longestVersion));
    std::ranges::replace_if(
        line, [](QChar character) { return !character.isPrint(); }, QChar(u' '));
    return line;
}

/// Notes of a length that Qt lays out in a moment.
QString shownNotes(const QString &notes) {
    constexpr qsizetype longestNotes = 4'000;
    if (notes.size() <= longestNotes) {
        return notes;
    }
    const bool isBetweenHalves = notes.at(longestNotes - 1).isHighSurrogate();
    return notes.first(longestNotes - (isBetweenHalves ? 1 : 0)) + QStringLiteral("…");
}
} // namespace

std::optional<Task> UpdateChecker::start(std::function<Ending(const std::stop_token &)> work) {
    const auto end = m_life.whileAlive([](const Ending &ending) {
        if (ending) {
            ending();
        }
    });
    return m_tasks.start([this, end, work = std::move(work)](const std::stop_token &stop) {
        m_services.mainQueue.post([end, ending = work(stop)] { end(ending); });
    });
}

UpdateChecker::Ending UpdateChecker::alert(const QString &title, const QString &body) {
    return [this, title, body] { m_services.application.runAlert({title, body, {}}, [](int) {}); };
}

void UpdateChecker::startPeriodicChecks() {
    check(/*userInitiated=*/false);
    m_timer = m_services.mainQueue.repeat(checkInterval, [this] { check(/*userInitiated=*/false); });
}

void UpdateChecker::check(bool userInitiated) {
    const auto task =
        start([this, userInitiated](const std::stop_token &stop) { return checked(userInitiated, stop); });
    if (!task) {
        if (const Ending ending = checkFailed(noThread, userInitiated)) {
            ending();
        }
    }
}

UpdateChecker::Ending UpdateChecker::checked(bool userInitiated, const std::stop_token &stop) {
    VersionHistory(m_services.process.homeDirectory()).remember(currentVersion(m_services.process));
    // Of installs that were killed.
    m_services.installation.removeAbandoned({updateWorkName, QLatin1StringView(platform::downloadName)});
    try {
        return reported(fetchedFeed(stop), userInitiated);
    } catch (const platform::CancellationError &) {
        return {};
    } catch (const std::exception &error) {
        return checkFailed(QString::fromUtf8(error.what()), userInitiated);
    }
}

UpdateFeed UpdateChecker::fetchedFeed(const std::stop_token &stop) const {
    platform::URLRequest request;
    request.url = feedURL(m_services.process);
    request.timeout = feedTimeout;
    request.longestTime = longestCheck;
    request.longestBody = longestFeed;
    request.followsRedirects = true;
    return updateFeedFromJSON(m_services.urlSession.data(request, stop).body);
}

UpdateChecker::Ending UpdateChecker::reported(const UpdateFeed &feed, bool userInitiated) {
    const QString current = currentVersion(m_services.process);
    if (isNewer(feed.version, current)) {
        FileLog::log(QStringLiteral("update available: %1 (running %2)").arg(shown(feed.version), shown(current)));
        return [this, feed] { offerUpdate(shown(feed.version), shownNotes(feed.notes), feed.archive); };
    }
    FileLog::log(QStringLiteral("update check: up to date (%1)").arg(shown(current)));
    return userInitiated ? alert(QStringLiteral("You're up to date"),
                                 QStringLiteral("Quillory %1 is the latest version.").arg(current))
                         : Ending();
}

UpdateChecker::Ending UpdateChecker::checkFailed(const QString &description, bool userInitiated) {
    FileLog::log(QStringLiteral("update check failed: ") + description);
    return userInitiated ? alert(QStringLiteral("Update check failed"), description) : Ending();
}

void UpdateChecker::offerUpdate(const QString &version, const QString &notes, const QUrl &archive) {
    if (m_progress || std::exchange(m_isOfferOpen, true)) {
        return;
    }
    const QString question = QStringLiteral("Install now and relaunch?");
    const platform::Alert offer{.title = QStringLiteral("Quillory %1 is available").arg(version),
                                .body = notes.isEmpty() ? question : notes + QStringLiteral("\n\n") + question,
                                .buttons = {QStringLiteral("Install & Relaunch"), QStringLiteral("Later")}};
    m_services.application.runAlert(offer, m_life.whileAlive([this, archive](int button) {
        m_isOfferOpen = false;
        if (button == 0) {
            install(archive);
        }
    }));
}

void UpdateChecker::install(const QUrl &archive) {
    if (m_progress) {
        installFailed(QStringLiteral("Another update is being installed."))();
        return;
    }
    const auto show = m_life.whileAlive([this](const QString &work, std::optional<double> done) {
        if (m_progress) {
            m_progress->show(work, done);
        }
    });
    const auto progress = [this, show](const QString &work, std::optional<double> done) {
        m_services.mainQueue.post([show, work, done] { show(work, done); });
    };
    auto task =
        start([this, archive, progress](const std::stop_token &stop) { return installed(archive, progress, stop); });
    if (!task) {
        installFailed(noThread)();
        return;
    }
    m_progress = m_services.application.showProgress(QStringLiteral("Updating Quillory"),
                                                     [task = *task]() mutable { task.cancel(); });
}

UpdateChecker::Ending UpdateChecker::installed(const QUrl &archive, const UpdateInstall::Progress &progress,
                                               const std::stop_token &stop) {
    Ending ending;
    try {
        UpdateInstall(m_services, archive, progress, stop).run();
        ending = [this] { m_services.application.terminate(); };
    } catch (const platform::CancellationError &) {
        FileLog::log(QStringLiteral("update install cancelled"));
    } catch (const std::exception &error) {
        ending = installFailed(QString::fromUtf8(error.what()));
    }
    return [this, ending] {
        m_progress.reset();
        if (ending) {
            ending();
        }
    };
}

UpdateChecker::Ending UpdateChecker::installFailed(const QString &description) {
    FileLog::log(QStringLiteral("update install failed: ") + description);
    return alert(QStringLiteral("Update failed"), description);
}

} // namespace quillory
