// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/DesktopFacts.h"

namespace platform::desktop {

/// Mends a Linux desktop. Holds nothing; any thread.
class LinuxMending final : public DesktopMending {
  public:
    bool enableAccessibility() override;
    bool setStartsAtLogin(bool starts) override;
    bool start() override;
    bool restart(const ApplicationFacts &application) override;
};

} // namespace platform::desktop
