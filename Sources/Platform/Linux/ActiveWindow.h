// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <cstdint>

namespace platform::desktop {

/// The window that has the keyboard, by the window manager's word.
struct ActiveWindow {
    std::uint32_t id = 0;
    /// The process that shows it, as the window itself says (in a sandbox not by its number outside); 0 when it does
    /// not say.
    qint32 pid = 0;
};

} // namespace platform::desktop
