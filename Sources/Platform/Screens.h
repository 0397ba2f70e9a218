// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Geometry.h"

#include <optional>
#include <vector>

namespace platform {

/// A display, in screen coordinates: points, origin at the bottom left of the primary screen, y upwards.
struct Screen {
    Rect frame;
    /// The frame without the desktop's panels and bars.
    Rect visibleFrame;
    friend bool operator==(const Screen &, const Screen &) = default;
};

/// The displays of the desktop. Main thread only, never waits on another process.
class Screens {
  public:
    virtual ~Screens() = default;
    /// All displays, the primary one (whose frame starts at 0, 0) first. Empty when there is none.
    [[nodiscard]] virtual std::vector<Screen> screens() = 0;
    /// The display that has the keyboard focus, else the primary one.
    [[nodiscard]] virtual std::optional<Screen> mainScreen() = 0;
};

} // namespace platform
