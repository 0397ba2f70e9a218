// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

/// The desktop's own setting for accessibility, which counts from the next login on. Kept by GSettings, which not every
/// desktop has.
namespace platform::desktop::desktopSettings {

[[nodiscard]] std::optional<bool> isAccessibilityKept();
/// Whether it could be stored.
bool keepAccessibility();

} // namespace platform::desktop::desktopSettings
