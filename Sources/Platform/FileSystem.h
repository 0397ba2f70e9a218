// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <stdexcept>
#include <stop_token>

namespace platform {

/// An operation on files failed. The text is a sentence fit for a user's eyes.
class FileError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The files of this computer, as far as installing an application needs them. Any thread but the main one. A path
/// that begins with "/Applications/" stands for the user's own folder of applications.
class FileSystem {
  public:
    virtual ~FileSystem() = default;
    /// The folder for files of no lasting worth. Throws FileError when others could change what is put there.
    [[nodiscard]] virtual QString temporaryDirectory() const = 0;
    /// Makes a folder that only this user can look into, with what is missing above it. Throws FileError, also when
    /// there is something at the path already.
    virtual void createDirectory(const QString &path) = 0;
    /// The names in a folder, in no particular order. Throws FileError.
    [[nodiscard]] virtual QStringList contentsOfDirectory(const QString &path) = 0;
    /// Keeps removeAbandoned(), in whatever process, from taking a file or folder until it is removed, as if it had
    /// been made by createDirectory().
    virtual void hold(const QString &path) noexcept = 0;
    /// Removes a file, or a folder with all that is in it; what cannot be removed stays.
    virtual void removeItem(const QString &path) noexcept = 0;
    /// Removes what earlier runs of this user left in the temporary folder under names that begin so, and have not
    /// touched for minutes.
    virtual void removeAbandoned(const QStringList &beginnings) noexcept = 0;
    /// Looks at a bundle and throws when it is not to be installed.
    using Approval = std::function<void(const QString &bundle)>;
    /// Puts a copy of a bundle in the place of an installed one, or where there is none yet, as one step: whatever
    /// happens on the way, one of the two stands there whole. The copy is approved where it will stay, before and after
    /// it takes the place. Throws FileError, CancellationError or what the approval threw, and has then changed
    /// nothing.
    virtual void replaceItem(const QString &installed, const QString &found, const Approval &approve,
                             const std::stop_token &stop) = 0;
};

} // namespace platform
