// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Page/PageTree.h"

namespace platform::desktop::atspi {

/// Finds out where the texts of a page stand.
class TextPlaces {
  public:
    /// Reads the frames (pixels of the screen) of all texts that are not blank; items holds one item for each step.
    /// False if some places are still to come.
    bool read(const Asking &asking, const std::vector<PageWalk::Step> &steps, std::vector<AXSubtreeNode> &items);

  private:
    /// Since when there are texts that their application cannot place.
    std::optional<Clock::time_point> m_unplacedSince;
};

} // namespace platform::desktop::atspi
