// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/FileSystem.h"
#include "Platform/Linux/FileDescriptor.h"

#include <optional>

namespace platform::desktop {

/// A folder of applications, in which bundles take each other's place. Only one process at a time changes it.
///
/// A new bundle is copied beside the old one, brought to the disk and approved there; then one renameat2() exchanges
/// the two names, and the old one is removed. So at any instant, also after a crash or a loss of power, a whole bundle
/// stands under the name. A file system that cannot exchange names (EINVAL) gets two renames instead: the old bundle
/// becomes "NAME.previous" and then the new one takes the name. Should the machine stop between the two, the old one
/// is whole and startable as "NAME.previous", and recover() gives it its name back.
class BundleInstaller {
  public:
    /// The folder is made when something is installed.
    explicit BundleInstaller(const QString &folder) : m_folder(folder) {}

    /// Copies a bundle into the folder under a name, replacing what has the name. Throws FileError,
    /// CancellationError, or what the approval threw; nothing is changed then.
    void install(const QString &found, const QByteArray &name, const FileSystem::Approval &approve,
                 const std::stop_token &stop) const;
    /// Puts right what an install left that was ended from outside. Does nothing while another process installs.
    void recover(const QByteArray &name) const noexcept;

  private:
    QString m_folder;
};

} // namespace platform::desktop
