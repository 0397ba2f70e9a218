// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/SystemTools.h"

namespace platform::desktop {

/// Carries out what the two tools would: unpacks archives in this process, and has the shell start an installed
/// application once this process has ended.
class LinuxSystemTools final : public SystemTools {
  public:
    [[nodiscard]] int run(const QString &executable, const QStringList &arguments,
                          const std::stop_token &stop) override;
    /// The command "sleep 1; open 'BUNDLE'" only. The application belongs to the user's session, not to this process:
    /// it has no open file of this process and no terminal.
    void startDetached(const QString &executable, const QStringList &arguments) override;
};

} // namespace platform::desktop
