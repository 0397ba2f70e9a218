// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

namespace platform::desktop {

/// Examines a Linux desktop through connections of its own, closed again after each examination. Needs no
/// QCoreApplication.
class LinuxExamination final : public DesktopExamination {
  public:
    [[nodiscard]] DesktopFacts examine(const std::stop_token &stop) override;
    [[nodiscard]] std::vector<ApplicationFacts> examineApplications(const std::stop_token &stop) override;
};

} // namespace platform::desktop
