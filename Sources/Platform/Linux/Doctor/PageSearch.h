// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"
#include "Platform/Linux/Accessibility/Bus/Connection.h"

namespace platform::desktop {

/// The pages of an application on the accessibility bus, with their fields but without text. Waits up to three seconds
/// for a browser that builds its tree only when asked. Absent when the application did not answer.
[[nodiscard]] std::optional<PagesFacts> findPages(atspi::Connection &bus, const atspi::ElementRef &application);

} // namespace platform::desktop
