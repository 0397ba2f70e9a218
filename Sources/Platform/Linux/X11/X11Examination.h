// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

#include <set>

namespace platform::desktop {

/// Fills in what the X server knows: display, window manager, tray, compositor, clipboard manager and key grabs.
void examineX11(DesktopFacts &facts);

/// The processes that have windows on the X display.
[[nodiscard]] std::set<qint32> processesWithWindows();

} // namespace platform::desktop
