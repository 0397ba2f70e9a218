// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CodeSigning.h"
#include "Platform/Installation.h"
#include "Platform/Linux/FileDescriptor.h"

#include <map>
#include <mutex>

namespace platform::desktop {

/// Installing on Linux. Held files and folders are locked with flock(), so that no other process takes them for
/// abandoned.
class LinuxInstallation : public Installation {
  public:
    /// signing: see BundleInstaller.
    explicit LinuxInstallation(const CodeSigning &signing) : m_signing(signing) {}

    [[nodiscard]] QString makeWorkFolder(const QString &beginning) override;
    void hold(const QString &path) noexcept override;
    void removeItem(const QString &path) noexcept override;
    void removeAbandoned(const QStringList &beginnings) noexcept override;
    [[nodiscard]] bool unpackArchive(const QString &archive, const QString &folder,
                                     const std::stop_token &stop) override;
    void replaceItem(const QString &installed, const QString &found, const Approval &approve,
                     const std::stop_token &stop) override;
    void relaunchAfterExit(const QString &application) override;

  private:
    const CodeSigning &m_signing;
    std::mutex m_mutex;
    std::map<QString, FileDescriptor> m_locks;
};

} // namespace platform::desktop
