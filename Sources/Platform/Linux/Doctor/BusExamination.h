// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

namespace platform::desktop {

/// Fills in what the session bus and the accessibility bus know: whether they answer, whether accessibility is on, the
/// status area, and the pages of the applications that facts already lists. Takes bounded time, even when an
/// application hangs.
void examineBuses(DesktopFacts &facts, const std::stop_token &stop);

/// Switches accessibility on for this session. Returns whether it is on afterwards.
bool enableAccessibilityNow(const std::stop_token &stop);

} // namespace platform::desktop
