// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Linux/Accessibility/Questions.h"
#include "Platform/Linux/Accessibility/Roles.h"
#include "Platform/Linux/Accessibility/TextRuns.h"

#include <map>
#include <unordered_map>
#include <unordered_set>

namespace platform::desktop::atspi {

/// An element of a bulk read as the bus gives it.
struct SubtreeItem {
    int depth = 0;
    QString role;
    std::optional<QString> value;
    std::optional<PixelRect> frame;
};

/// Reads whole subtrees in few round trips. It refines a walk of the tree: every round asks, all at once, about those
/// elements among the first ones of the walk that are not known yet, until none is left. So it never asks about much
/// more than the limits let through, and what it gives is what the walk would have met.
class SubtreeReader {
  public:
    /// Empty when it could not all be read in time.
    std::vector<SubtreeItem> read(Connection &connection, const ElementRef &root, AXSubtreeLimits limits,
                                  Deadline deadline);

  private:
    struct Info {
        bool isKnown = false;
        bool hasKnownChildren = false;
        bool isGone = false;
        bool hasStates = false;
        Kind kind;
        /// As an application that lists all its elements gave it; what it is worth depends on the toolkit.
        QString name;
        std::vector<ElementRef> children;
        std::vector<TextRun> runs;
    };
    /// One place in the walk: an element, or a run of text inside one.
    struct Step {
        int depth = 0;
        ElementRef ref;
        const TextRun *run = nullptr;
    };
    using Tree = std::unordered_map<ElementRef, Info, ElementRefHash>;
    struct Walk;

    [[nodiscard]] QString toolkit(Connection &connection, const std::string &bus, Deadline deadline);
    void readCache(Connection &connection, const std::string &bus, Tree &tree, Deadline deadline);
    static void askUnknown(Questions &questions, Tree &tree, const std::vector<ElementRef> &unknown,
                           std::size_t maxChildren, bool foldsText);
    static std::vector<SubtreeItem> fill(Connection &connection, Tree &tree, const std::vector<Step> &steps,
                                         Deadline deadline);

    std::map<std::string, QString, std::less<>> m_toolkits;
    /// Applications so large that listing all their elements costs more than asking for some of them.
    std::map<std::string, Clock::time_point, std::less<>> m_avoidCacheUntil;
};

} // namespace platform::desktop::atspi
