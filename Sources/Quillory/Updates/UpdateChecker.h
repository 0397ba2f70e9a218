// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Application.h"
#include "Platform/LifeToken.h"
#include "Platform/MainQueue.h"
#include "Quillory/Tasks.h"
#include "Quillory/Updates/UpdateFeed.h"
#include "Quillory/Updates/UpdateInstall.h"

namespace quillory {

/// Learns of new versions from the maker's version feed, offers them, and installs them on consent. Main thread only;
/// nothing blocks there. Going away, it ends what runs and waits for that.
class UpdateChecker {
  public:
    explicit UpdateChecker(const platform::UpdateServices &services) : m_services(services) {}

    /// Checks now and every six hours, silently unless there is something to offer.
    void startPeriodicChecks();
    /// Starts one check, which also records the running version. One that the user asked for also reports that there is
    /// nothing new, or what went wrong.
    void check(bool userInitiated);
    /// Offers a version with its notes and installs it from the address on consent. An offer that comes while another
    /// one is open, or while a version is being installed, is dropped.
    void offerUpdate(const QString &version, const QString &notes, const QUrl &archive);
    /// Downloads an archive, puts the application in it in the installed one's place, has it started and ends this
    /// program. Reports a failure in an alert.
    void install(const QUrl &archive);

  private:
    /// What is left to be done on the main thread; may be empty.
    using Ending = std::function<void()>;

    /// Runs work on a thread of its own, then its ending on the main thread. Absent when no thread could be started.
    std::optional<Task> start(std::function<Ending(const std::stop_token &)> work);
    Ending checked(bool userInitiated, const std::stop_token &stop);
    Ending reported(const UpdateFeed &feed, bool userInitiated);
    Ending checkFailed(const QString &description, bool userInitiated);
    Ending installed(const QUrl &archive, const UpdateInstall::Progress &progress, const std::stop_token &stop);
    Ending installFailed(const QString &description);
    [[nodiscard]] Ending alert(const QString &title, const QString &body);
    [[nodiscard]] UpdateFeed fetchedFeed(const std::stop_token &stop) const;

    platform::UpdateServices m_services;
    platform::RegistrationHandle m_timer;
    bool m_isOfferOpen = false;
    /// Set while an install runs.
    std::unique_ptr<platform::ProgressWindow> m_progress;
    platform::LifeToken m_life;
    /// Last, so that no work is left when the rest goes.
    Tasks m_tasks;
};

} // namespace quillory
