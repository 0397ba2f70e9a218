// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/FileSystem.h"

namespace platform::desktop {

/// Files on Linux.
class LinuxFileSystem final : public FileSystem {
  public:
    [[nodiscard]] QString temporaryDirectory() const override;
    void createDirectory(const QString &path) override;
    [[nodiscard]] QStringList contentsOfDirectory(const QString &path) override;
    void removeItem(const QString &path) noexcept override;
    void removeAbandoned(const QStringList &beginnings) noexcept override;
    void replaceItem(const QString &installed, const QString &found, const Approval &approve,
                     const std::stop_token &stop) override;
};

} // namespace platform::desktop
