// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CodeSigning.h"
#include "Platform/FileSystem.h"
#include "Platform/Linux/FileDescriptor.h"

namespace platform::desktop {

/// A folder of applications, in which bundles take each other's place. Only one process at a time changes it.
///
/// A new bundle is copied beside the old one, brought to the disk, approved and tried there; then one renameat2()
/// exchanges the two names, and the old one is removed. So at any instant, also after a crash or a loss of power, a
/// whole bundle stands under the name. A file system that cannot exchange names (EINVAL) gets two renames instead: the
/// old bundle becomes "NAME.previous" and then the new one takes the name. Should the machine stop between the two, the
/// old one is whole and startable as "NAME.previous", and recover() gives it its name back.
class BundleInstaller {
  public:
    /// The folder is made when something is installed. Who is genuine decides which of two bundles an interrupted
    /// install meant to leave.
    BundleInstaller(const QString &folder, const CodeSigning &signing) : m_folder(folder), m_signing(signing) {}

    /// Copies a bundle into the folder under a name, replacing what has the name. Throws FileError, also when its
    /// program does not start on this computer, CancellationError, or what the approval threw; nothing is changed then.
    void install(const QString &found, const QByteArray &name, const FileSystem::Approval &approve,
                 const std::stop_token &stop) const;
    /// Puts right what an install left that was ended from outside. Does nothing while another process installs.
    void recover(const QByteArray &name) const noexcept;

  private:
    /// Throws FileError unless the folder is the user's alone to change.
    [[nodiscard]] FileDescriptor openFolder() const;
    [[nodiscard]] bool isGenuine(const QByteArray &name) const;
    /// Gives the name to the genuine one of those that an interrupted install left, and removes the others. Under the
    /// lock.
    void restore(int folder, const QByteArray &name) const;

    QString m_folder;
    const CodeSigning &m_signing;
};

} // namespace platform::desktop
