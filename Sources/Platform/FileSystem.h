// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <stdexcept>
#include <stop_token>

namespace platform {

/// An operation on files failed. The message is a sentence for the user.
class FileError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What installing an application needs of the file system. Any thread but the main one. In a path, "/Applications/" at
/// the beginning stands for the user's own folder of applications.
class FileSystem {
  public:
    virtual ~FileSystem() = default;
    /// The folder for temporary files. Throws FileError when other users could change what is in it.
    [[nodiscard]] virtual QString temporaryDirectory() const = 0;
    /// Makes a folder that only this user can enter, and missing folders above it. Throws FileError, also when
    /// something exists at the path.
    virtual void createDirectory(const QString &path) = 0;
    /// The names in a folder, in no particular order. Throws FileError.
    [[nodiscard]] virtual QStringList contentsOfDirectory(const QString &path) = 0;
    /// Protects a file or folder from removeAbandoned(), in any process, until removeItem() removes it. Folders made by
    /// createDirectory() are protected from the start.
    virtual void hold(const QString &path) noexcept = 0;
    /// Removes a file, or a folder and everything in it. What cannot be removed stays.
    virtual void removeItem(const QString &path) noexcept = 0;
    /// Removes this user's files and folders in the temporary folder whose names have one of these beginnings, unless
    /// they are held or were changed within the last minutes.
    virtual void removeAbandoned(const QStringList &beginnings) noexcept = 0;
    /// Throws when a bundle must not be installed.
    using Approval = std::function<void(const QString &bundle)>;
    /// Replaces an installed bundle, if there is one, by a copy of another in one step: whatever goes wrong, one of the
    /// two is there, complete. The copy is approved in the folder where it stays, before and after it takes the place.
    /// Throws FileError, CancellationError or what the approval threw; nothing is changed then.
    virtual void replaceItem(const QString &installed, const QString &found, const Approval &approve,
                             const std::stop_token &stop) = 0;
};

} // namespace platform
