// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Page/TextPlaces.h"

namespace platform::desktop::atspi {

/// Reads whole subtrees in few round trips and few questions. It refines a walk of the tree: every round asks, all at
/// once, about those elements among the first ones of the walk that are not known yet, until none is left. So it never
/// asks about much more than the limits let through, and its outcome is what the walk would have met.
class SubtreeReader {
  public:
    struct Outcome {
        std::vector<AXSubtreeNode> items;
        /// When the first question that it rests on was asked.
        Clock::time_point begunAt = {};
    };
    /// Without items when not everything could be read in time. What was read is kept, and the next read goes on from
    /// there if mayGoOn allows it.
    Outcome read(const Asking &asking, const ElementRef &root, AXSubtreeLimits limits, bool mayGoOn = true);
    /// Whether the last read met an element.
    [[nodiscard]] bool knows(const ElementRef &ref) const { return m_known.tree.contains(ref); }

  private:
    /// The last read: whether it came to its end, when it began, and when it ended. What it did not ask about comes
    /// from the last walk.
    struct Known {
        PageRequest request;
        bool isWhole = false;
        Clock::time_point begunAt;
        Clock::time_point walkedAt;
        Clock::time_point leftAt;
        PageTree tree;
    };

    [[nodiscard]] QString toolkit(const Asking &asking, const std::string &bus);
    [[nodiscard]] PageTree begin(const Asking &asking, const PageRequest &request, bool isSame);
    std::vector<AXSubtreeNode> refine(const Asking &asking, const PageRequest &request, PageTree &tree);
    PageListing list(const Asking &asking, const PageRequest &request);
    [[nodiscard]] bool isWalkKnown(Clock::time_point now) const;
    std::vector<AXSubtreeNode> finish(const Asking &asking, const PageTree &tree,
                                      const std::vector<PageWalk::Step> &steps);

    /// Of the application that was read last.
    std::string m_toolkitOf;
    QString m_toolkit;
    Known m_known;
    TextPlaces m_places;
};

} // namespace platform::desktop::atspi
