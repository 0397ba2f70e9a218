// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/SystemTools.h"

namespace platform::desktop {

/// Unpacks with libarchive in this process, and leaves a shell behind that starts the relaunched application. That
/// application belongs to the user's session: it inherits no open file, no terminal and no session from this process.
class LinuxSystemTools final : public SystemTools {
  public:
    [[nodiscard]] bool unpackArchive(const QString &archive, const QString &folder,
                                     const std::stop_token &stop) override;
    void relaunchAfterExit(const QString &application) override;
};

} // namespace platform::desktop
