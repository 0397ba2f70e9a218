// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

#include <set>

namespace platform::desktop {

/// Fills in what the X server knows: display, window manager, status area, compositor, clipboard manager, key grabs.
/// Gives the processes that have windows there.
std::set<qint32> examineX11(DesktopFacts &facts);

/// Whether the program runs on the display; false also where there is no display.
[[nodiscard]] bool isProgramRunning();

} // namespace platform::desktop
