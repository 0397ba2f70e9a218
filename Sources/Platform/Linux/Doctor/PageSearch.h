// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"
#include "Platform/Linux/Accessibility/Bus/Connection.h"

namespace platform::desktop {

/// The pages that an application shows on the accessibility bus, with the fields in them. Reads no text. Waits a moment
/// for a browser that builds its tree only when it is asked. Absent when the application did not answer.
[[nodiscard]] std::optional<PagesFacts> findPages(atspi::Connection &bus, const atspi::ElementRef &application);

} // namespace platform::desktop
