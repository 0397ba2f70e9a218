// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CodeSigning.h"
#include "Platform/Installation.h"
#include "Platform/Platform.h"
#include "Platform/Process.h"
#include "Platform/URLSession.h"

#include <QString>
#include <QUrl>

#include <functional>
#include <optional>
#include <stop_token>

namespace quillory {

/// The name of an update's work folder begins with this.
inline const QString updateWorkName = QStringLiteral("QuilloryUpdate-");

/// The version of the running program; "0" when its bundle states none. Any thread.
[[nodiscard]] QString currentVersion(const platform::Process &process);

/// Whether a genuine bundle was signed by the team whose updates this program takes. Any thread.
[[nodiscard]] bool isFromOurTeam(const platform::SigningInformation &bundle);

/// One install of an update: downloads the archive, verifies the application in it, puts it in the installed one's
/// place and arranges for it to start when this program ends. Not on the main thread.
class UpdateInstall {
  public:
    /// Told what is being done, in words for the user, and the part of it that is done, from 0 to 1, where known.
    /// Called on the installing thread, at most once per percent.
    using Progress = std::function<void(const QString &work, std::optional<double> done)>;

    UpdateInstall(const platform::UpdateServices &services, QUrl archive, Progress progress, std::stop_token stop);
    /// Throws RewriteError, FileError, URLError or CancellationError. The installed application is then unchanged,
    /// unless only the relaunch failed.
    void run();

  private:
    [[nodiscard]] QString downloaded();
    void approve(const QString &bundle);
    void show(const QString &work, std::optional<double> done);

    platform::UpdateServices m_services;
    QUrl m_archive;
    Progress m_progress;
    std::stop_token m_stop;
    QString m_shown;
    int m_percent = -1;
};

} // namespace quillory
