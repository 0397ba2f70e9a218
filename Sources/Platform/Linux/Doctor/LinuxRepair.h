// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

namespace platform::desktop {

/// Changes a Linux desktop. Has no state.
class LinuxRepair final : public DesktopRepair {
  public:
    bool enableAccessibility(const std::stop_token &stop) override;
    bool setStartsAtLogin(bool starts) override;
    bool start(const std::stop_token &stop) override;
};

} // namespace platform::desktop
