// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <stop_token>

namespace platform {

/// What installing an update needs of the system besides files. Any thread but the main one.
class SystemTools {
  public:
    virtual ~SystemTools() = default;
    /// Unpacks a zip archive into an empty folder. Returns false, having written the reason to standard error, when the
    /// archive is broken or not safe to unpack; the folder may then hold some of it. Throws CancellationError.
    [[nodiscard]] virtual bool unpackArchive(const QString &archive, const QString &folder,
                                             const std::stop_token &stop) = 0;
    /// Has an installed application started once this program has ended. The path may begin with "/Applications/".
    /// Throws FileError when that cannot be arranged.
    virtual void relaunchAfterExit(const QString &application) = 0;
};

} // namespace platform
