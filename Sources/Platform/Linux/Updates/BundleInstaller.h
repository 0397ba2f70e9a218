// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CodeSigning.h"
#include "Platform/Installation.h"
#include "Platform/Linux/FileDescriptor.h"

namespace platform::desktop {

/// Installs bundles in a folder of applications. A lock lets only one process at a time change it.
///
/// A new bundle is copied beside the old one, synced to disk, approved and tried there. Then one renameat2() exchanges
/// the two names, and the old bundle is removed. So there is a complete bundle under the name at any instant, even
/// after a crash or a power failure. On a file system that cannot exchange names (EINVAL), the old bundle is first
/// renamed to "NAME.previous" and the new one then takes the name. If the machine stops between the two renames, the
/// old bundle can still be started as "NAME.previous", and recover() renames it back.
class BundleInstaller {
  public:
    /// The first install makes the folder. signing: decides which of two bundles is genuine after an interrupted
    /// install.
    BundleInstaller(const QString &folder, const CodeSigning &signing) : m_folder(folder), m_signing(signing) {}

    /// Copies a bundle into the folder under a name, replacing the one that has the name. Throws FileError, also when
    /// its program does not start on this computer, CancellationError, or what the approval threw; nothing is changed
    /// then.
    void install(const QString &found, const QByteArray &name, const Installation::Approval &approve,
                 const std::stop_token &stop) const;
    /// Repairs what a killed install left behind. Does nothing while another process installs.
    void recover(const QByteArray &name) const noexcept;

  private:
    /// Throws FileError unless the folder is the user's alone to change.
    [[nodiscard]] FileDescriptor openFolder() const;
    [[nodiscard]] bool isGenuine(const QByteArray &name) const;
    /// Gives the name to the genuine bundle among those that an interrupted install left, and removes the others. The
    /// lock must be held.
    void restore(int folder, const QByteArray &name) const;

    QString m_folder;
    const CodeSigning &m_signing;
};

} // namespace platform::desktop
