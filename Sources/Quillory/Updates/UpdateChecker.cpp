// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Updates/UpdateChecker.h"

#include "Platform/PerInstallation.h"
#include "Quillory/Records/FileLog.h"
#include "Quillory/RewriteError.h"
#include "Quillory/Updates/UpdateFeed.h"
#include "Quillory/Updates/UpdateState.h"

#include <QRegularExpression>

#include <chrono>

namespace quillory {

using namespace std::chrono_literals;

UpdateState &updateState() {
    static platform::PerInstallation<UpdateState> state;
    return state.get([] { return UpdateState(); });
}

void onMainThread(const std::weak_ptr<bool> &life, std::function<void()> work) {
    platform::current().mainQueue.post([life, work = std::move(work)] {
        if (!life.expired()) {
            work();
        }
    });
}

void showAlert(const QString &title, const QString &body) {
    platform::current().application.runAlert({title, body, {}}, [](int) {});
}

std::optional<QString> descriptionOfCurrentError() {
    try {
        throw;
    } catch (const platform::CancellationError &) {
        return std::nullopt;
    } catch (const std::exception &error) {
        return QString::fromUtf8(error.what());
    }
}

namespace UpdateChecker {

namespace {
constexpr auto checkInterval = 21'600s;
constexpr auto feedTimeout = 15s;
constexpr auto longestCheck = 60s; // with each address that the feed's points to
constexpr qint64 longestFeed = 1 << 20;

qint64 versionNumber(const QString &component) {
    static const QRegularExpression form(QRegularExpression::anchoredPattern(QStringLiteral("[+-]?[0-9]+")));
    return form.match(component).hasMatch() ? component.toLongLong() : 0;
}

/// A version as it is shown and logged: what comes from the network stays on its line, and within bounds.
QString shown(const QString &version) {
    constexpr qsizetype longestVersion = 64;
    QString line = version.first(std::min(version.size(), longestVersion));
    for (QChar &character : line) {
        if (!character.isPrint()) {
            character = QLatin1Char(' ');
        }
    }
    return line;
}

/// Notes that are laid out in a moment.
QString shownNotes(const QString &notes) {
    constexpr qsizetype longestNotes = 4'000;
    if (notes.size() <= longestNotes) {
        return notes;
    }
    const bool isBetweenHalves = notes.at(longestNotes - 1).isHighSurrogate();
    return notes.first(longestNotes - (isBetweenHalves ? 1 : 0)) + QStringLiteral("…");
}

UpdateFeed fetchedFeed(const std::stop_token &stop) {
    platform::URLRequest request;
    request.url = feedURL();
    request.timeout = feedTimeout;
    request.longestTime = longestCheck;
    request.longestBody = longestFeed;
    request.followsRedirects = true;
    return updateFeedFromJSON(platform::current().urlSession.data(request, stop).body);
}

void report(const UpdateFeed &feed, bool userInitiated, const std::weak_ptr<bool> &life) {
    const QString current = currentVersion();
    if (isNewer(feed.version, current)) {
        FileLog::log(QStringLiteral("update available: %1 (running %2)").arg(shown(feed.version), shown(current)));
        onMainThread(life, [feed] { offerUpdate(shown(feed.version), shownNotes(feed.notes), feed.archive); });
        return;
    }
    FileLog::log(QStringLiteral("update check: up to date (%1)").arg(shown(current)));
    if (userInitiated) {
        onMainThread(life, [current] {
            showAlert(QStringLiteral("You're up to date"),
                      QStringLiteral("Quillory %1 is the latest version.").arg(current));
        });
    }
}

void reportFailure(const QString &description, bool userInitiated, const std::weak_ptr<bool> &life) {
    FileLog::log(QStringLiteral("update check failed: ") + description);
    if (userInitiated) {
        onMainThread(life, [description] { showAlert(QStringLiteral("Update check failed"), description); });
    }
}
} // namespace

void startPeriodicChecks() {
    check(/*userInitiated=*/false);
    updateState().timer = platform::current().mainQueue.repeat(checkInterval, [] { check(/*userInitiated=*/false); });
}

void check(bool userInitiated) {
    const std::weak_ptr<bool> life = updateState().life;
    const auto task = updateState().tasks->start([userInitiated, life](const std::stop_token &stop) {
        versionHistory::remember(currentVersion(), platform::current().process.homeDirectory());
        // Of installs that were ended from outside.
        platform::current().fileSystem.removeAbandoned({updateWorkName, QLatin1StringView(platform::downloadName)});
        try {
            report(fetchedFeed(stop), userInitiated, life);
        } catch (...) {
            if (const auto description = descriptionOfCurrentError()) {
                reportFailure(*description, userInitiated, life);
            }
        }
    });
    if (!task) {
        reportFailure(QStringLiteral("The system has no thread to give."), userInitiated, life);
    }
}

void stop() {
    UpdateState &state = updateState();
    state.timer.reset();
    state.life = std::make_shared<bool>(true);
    state.tasks = std::make_unique<Tasks>();
    state.progress.reset();
    state.isOfferOpen = false;
}

QString currentVersion() {
    return platform::current()
        .process.infoDictionaryString(QStringLiteral("CFBundleShortVersionString"))
        .value_or(QStringLiteral("0"));
}

bool isNewer(const QString &version, const QString &other) {
    const QStringList left = version.split(u'.', Qt::SkipEmptyParts);
    const QStringList right = other.split(u'.', Qt::SkipEmptyParts);
    for (qsizetype i = 0; i < std::max(left.size(), right.size()); ++i) {
        const qint64 number = versionNumber(left.value(i));
        const qint64 otherNumber = versionNumber(right.value(i));
        if (number != otherNumber) {
            return number > otherNumber;
        }
    }
    return false;
}

void offerUpdate(const QString &version, const QString &notes, const QUrl &archive) {
    if (updateState().progress || std::exchange(updateState().isOfferOpen, true)) {
        return; // it is being installed, or the user is being asked
    }
    const QString question = QStringLiteral("Install now and relaunch?");
    const platform::Alert offer{.title = QStringLiteral("Quillory %1 is available").arg(version),
                                .body = notes.isEmpty() ? question : notes + QStringLiteral("\n\n") + question,
                                .buttons = {QStringLiteral("Install & Relaunch"), QStringLiteral("Later")}};
    platform::current().application.runAlert(offer, [archive, life = std::weak_ptr(updateState().life)](int button) {
        if (life.expired()) {
            return;
        }
        updateState().isOfferOpen = false;
        if (button == 0) {
            install(archive);
        }
    });
}

} // namespace UpdateChecker

} // namespace quillory
