// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

#include <chrono>

namespace platform::desktop {

/// Ends a browser or chat program as its user would and starts it again with its tree and on the X display. Waits for
/// its end for as long as the patience lasts, and longer unless the token asks to stop, which also ends the wait for
/// its coming up. Any thread.
[[nodiscard]] RestartOutcome restartProgram(const ApplicationFacts &application, const std::stop_token &stop,
                                            std::chrono::milliseconds patience = std::chrono::seconds(10));

} // namespace platform::desktop
