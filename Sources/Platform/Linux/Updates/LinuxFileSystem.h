// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CodeSigning.h"
#include "Platform/FileSystem.h"
#include "Platform/Linux/FileDescriptor.h"

#include <map>
#include <mutex>

namespace platform::desktop {

/// Files on Linux. A folder that it made stays locked until it removes it, so that no other process takes it for one
/// that was left behind.
class LinuxFileSystem final : public FileSystem {
  public:
    /// Who made a bundle decides what an interrupted install meant to leave.
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
