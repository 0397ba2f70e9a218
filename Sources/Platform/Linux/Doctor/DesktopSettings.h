// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

/// The desktop's setting for accessibility, which takes effect at the next login. It is in GSettings, which not every
/// desktop has.
namespace platform::desktop::desktopSettings {

[[nodiscard]] std::optional<bool> isAccessibilityKept();
/// Returns whether it could be stored.
bool keepAccessibility();

} // namespace platform::desktop::desktopSettings
