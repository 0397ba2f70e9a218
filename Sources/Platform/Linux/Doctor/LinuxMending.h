// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

namespace platform::desktop {

/// Mends a Linux desktop. Holds nothing; any thread.
class LinuxMending final : public DesktopMending {
  public:
    bool enableAccessibility(const std::stop_token &stop) override;
    bool setStartsAtLogin(bool starts) override;
    bool start(const std::stop_token &stop) override;
    RestartOutcome restart(const ApplicationFacts &application, const std::stop_token &stop) override;
};

} // namespace platform::desktop
