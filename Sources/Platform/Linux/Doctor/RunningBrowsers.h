// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

#include <set>

namespace platform::desktop {

/// The user's running programs of this session that have a bundle identifier (browsers, chat programs), each once,
/// without the helper processes that they start. withWindows: the processes that have windows on the X display.
/// Nothing is known of their trees yet.
[[nodiscard]] std::vector<ApplicationFacts> runningApplications(const std::set<qint32> &withWindows,
                                                                SessionType session);

} // namespace platform::desktop
