// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

namespace platform::desktop {

/// Looks at a Linux desktop through connections of its own, which live only as long as the look. Needs no application
/// object.
class LinuxExamination final : public DesktopExamination {
  public:
    [[nodiscard]] DesktopFacts examine(const std::stop_token &stop) override;
};

} // namespace platform::desktop
