// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

namespace platform::desktop {

/// Examines a Linux desktop, and changes it as the user asked, through connections of its own, closed again after each
/// operation. Needs no QCoreApplication, has no state.
class LinuxDoctor final : public DesktopDoctor {
  public:
    [[nodiscard]] DesktopFacts examine(const std::stop_token &stop) override;
    [[nodiscard]] std::vector<ApplicationFacts> examineApplications(const std::stop_token &stop) override;

    bool enableAccessibility(const std::stop_token &stop) override;
    bool setStartsAtLogin(bool starts) override;
    bool start(const std::stop_token &stop) override;
};

} // namespace platform::desktop
