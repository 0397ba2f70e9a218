// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Linux/Accessibility/Questions.h"
#include "Platform/Linux/Accessibility/Roles.h"
#include "Platform/Linux/Accessibility/TextRuns.h"

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

/// Reads whole subtrees in few round trips and few questions. It refines a walk of the tree: every round asks, all at
/// once, about those elements among the first ones of the walk that are not known yet, until none is left. So it never
/// asks about much more than the limits let through, and what it gives is what the walk would have met.
class SubtreeReader {
  public:
    /// Empty when it could not all be read in time; what was read is kept, and the next read goes on from there.
    std::vector<SubtreeItem> read(Connection &connection, const ElementRef &root, AXSubtreeLimits limits,
                                  Deadline deadline);

  private:
    struct Info {
        bool isKnown = false;
        bool hasKnownChildren = false;
        bool hasKnownRuns = false;
        bool hasKnownDetails = false;
        bool isGone = false;
        /// Named as a text by the application's own search; taken for one without children until it turns out to
        /// have some.
        bool isTakenForLeaf = false;
        Kind kind;
        std::vector<ElementRef> children;
        std::vector<TextRun> runs;
        /// A static text's own, once it was asked for.
        std::optional<QString> text;
    };
    /// One place in the walk: an element, or a run of text inside one.
    struct Step {
        int depth = 0;
        ElementRef ref;
        const TextRun *run = nullptr;
    };
    using Tree = std::unordered_map<ElementRef, Info, ElementRefHash>;
    struct Walk;

    /// What an application's own search tells of a subtree, in the order of a walk.
    struct Listing {
        std::vector<ElementRef> all;
        std::vector<ElementRef> texts;
        friend bool operator==(const Listing &, const Listing &) = default;
    };
    /// What is to be read.
    struct Request {
        ElementRef root;
        AXSubtreeLimits limits;
        /// Empty where the application cannot search.
        Listing listing = {};
        /// The texts of a block stand in the block's own.
        bool foldsText = false;
    };
    /// The last read: whether it came to its end, when it began, and when it was left.
    struct Known {
        Request request;
        bool isWhole = false;
        Clock::time_point begunAt;
        Clock::time_point leftAt;
        Tree tree;
    };

    [[nodiscard]] QString toolkit(Connection &connection, const std::string &bus, Deadline deadline);
    [[nodiscard]] Tree begin(Connection &connection, const Request &request, Deadline deadline);
    static std::vector<SubtreeItem> refine(Connection &connection, const Request &request, Tree &tree,
                                           Deadline deadline);
    static Listing list(Connection &connection, const ElementRef &root, int limit, Deadline deadline);
    static void doubtTexts(Connection &connection, Tree &tree, Deadline deadline);
    static QString expectedText(const Tree &tree, const Info &info);
    static void forgetTexts(Tree &tree, const Info &info);
    static std::vector<ElementRef> doubtfulLeaves(const Walk &walk, const std::vector<ElementRef> &texts);
    static void askUnknown(Connection &connection, const Request &request, Tree &tree,
                           const std::vector<ElementRef> &unknown, Deadline deadline);
    static void askTexts(Connection &connection, Tree &tree, const std::vector<Step> &steps, Deadline deadline);
    static std::vector<ElementRef> leavesWithChildren(const Tree &tree, const std::vector<Step> &steps);
    static std::vector<SubtreeItem> finish(Connection &connection, Tree &tree, const std::vector<Step> &steps,
                                           Deadline deadline);
    static void askFrames(Connection &connection, const std::vector<Step> &steps, std::vector<SubtreeItem> &items,
                          Deadline deadline);

    /// Of the application that was read last.
    std::string m_toolkitOf;
    QString m_toolkit;
    Known m_known;
};

} // namespace platform::desktop::atspi
