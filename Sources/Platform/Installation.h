// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/FileError.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <stop_token>

namespace platform {

/// What installing an update needs of the system. Any thread but the main one. In the path of an installed application,
/// "/Applications/" at the beginning stands for the user's own folder of applications.
class Installation {
  public:
    virtual ~Installation() = default;
    /// Makes a folder for temporary files that only this user can enter, and that is held (see below). Returns its
    /// path; its name begins as given. Throws FileError, also when other users could put another one in its place.
    [[nodiscard]] virtual QString makeWorkFolder(const QString &beginning) = 0;
    /// Protects a file or folder from removeAbandoned(), in any process, until removeItem() removes it.
    virtual void hold(const QString &path) noexcept = 0;
    /// Removes a file, or a folder and everything in it. What cannot be removed stays.
    virtual void removeItem(const QString &path) noexcept = 0;
    /// Removes this user's files and folders in the temporary folder whose names have one of these beginnings, unless
    /// they are held or were changed within the last minutes.
    virtual void removeAbandoned(const QStringList &beginnings) noexcept = 0;
    /// Unpacks a zip archive into an empty folder. Returns false, having written the reason to standard error, when the
    /// archive is broken or not safe to unpack; the folder may then hold some of it. Throws CancellationError.
    [[nodiscard]] virtual bool unpackArchive(const QString &archive, const QString &folder,
                                             const std::stop_token &stop) = 0;
    /// Throws when a bundle must not be installed.
    using Approval = std::function<void(const QString &bundle)>;
    /// Replaces an installed bundle, if there is one, by a copy of another in one step: whatever goes wrong, one of the
    /// two is there, complete. The copy is approved in the folder where it stays, before and after it takes the place.
    /// Throws FileError, CancellationError or what the approval threw; nothing is changed then.
    virtual void replaceItem(const QString &installed, const QString &found, const Approval &approve,
                             const std::stop_token &stop) = 0;
    /// Has an installed application started once this program has ended. Throws FileError when that cannot be arranged.
    virtual void relaunchAfterExit(const QString &application) = 0;
};

} // namespace platform
