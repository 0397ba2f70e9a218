// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

#include <set>

namespace platform::desktop {

/// The user's running browsers and chat programs (all programs with a bundle identifier) in this session, without their
/// helper processes and without their trees. withWindows: the processes that have windows on the X display.
[[nodiscard]] std::vector<ApplicationFacts> runningApplications(const std::set<qint32> &withWindows,
                                                                SessionType session);

} // namespace platform::desktop
