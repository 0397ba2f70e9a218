// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CodeSigning.h"
#include "Platform/FileSystem.h"
#include "Platform/Linux/FileDescriptor.h"

#include <map>
#include <mutex>

namespace platform::desktop {

/// Files on Linux. Held files and folders are locked with flock(), so that no other process takes them for abandoned.
class LinuxFileSystem final : public FileSystem {
  public:
    /// signing: see BundleInstaller.
    explicit LinuxFileSystem(const CodeSigning &signing) : m_signing(signing) {}

    [[nodiscard]] QString temporaryDirectory() const override;
    void createDirectory(const QString &path) override;
    [[nodiscard]] QStringList contentsOfDirectory(const QString &path) override;
    void hold(const QString &path) noexcept override;
    void removeItem(const QString &path) noexcept override;
    void removeAbandoned(const QStringList &beginnings) noexcept override;
    void replaceItem(const QString &installed, const QString &found, const Approval &approve,
                     const std::stop_token &stop) override;

  private:
    const CodeSigning &m_signing;
    std::mutex m_mutex;
    std::map<QString, FileDescriptor> m_locks;
};

} // namespace platform::desktop
