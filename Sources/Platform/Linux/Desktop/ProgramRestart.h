// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/DesktopFacts.h"

namespace platform::desktop {

/// Ends a browser or chat program as its user would and starts it again with its tree and on the X display. Whether it
/// came up; the token ends the wait for that alone. Any thread.
[[nodiscard]] bool restartProgram(const ApplicationFacts &application, const std::stop_token &stop);

} // namespace platform::desktop
