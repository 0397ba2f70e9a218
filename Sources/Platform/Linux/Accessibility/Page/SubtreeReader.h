// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Linux/Accessibility/Bus/Questions.h"
#include "Platform/Linux/Accessibility/Bus/Roles.h"
#include "Platform/Linux/Accessibility/Text/TextRuns.h"

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
    struct Outcome {
        std::vector<SubtreeItem> items;
        /// When the first of the questions was asked that it rests on.
        Clock::time_point begunAt = {};
    };
    /// Without items when it could not all be read in time. What was read is kept, and the next read goes on from
    /// there if it may.
    Outcome read(const Asking &asking, const ElementRef &root, AXSubtreeLimits limits, bool mayGoOn = true);
    /// Whether the last read met an element.
    [[nodiscard]] bool knows(const ElementRef &ref) const { return m_known.tree.contains(ref); }

  private:
    struct Info {
        bool isKnown = false;
        bool hasKnownChildren = false;
        bool hasKnownDetails = false;
        bool isGone = false;
        /// Named as a text by the application's own search; taken for one without children until it turns out to
        /// have some.
        bool isTakenForLeaf = false;
        Kind kind;
        std::vector<ElementRef> children;
        /// The element's own text where the texts of a page are folded, once it was asked for.
        std::optional<FoldedText> folded;
        /// What it was in the last read.
        std::optional<FoldedText> former;
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

        [[nodiscard]] bool isLike(const Request &other) const {
            return root == other.root && limits == other.limits && foldsText == other.foldsText;
        }
    };
    /// The last read: whether it came to its end, when it began, and when it was left. What it did not ask about goes
    /// back to the last walk.
    struct Known {
        Request request;
        bool isWhole = false;
        Clock::time_point begunAt;
        Clock::time_point walkedAt;
        Clock::time_point leftAt;
        Tree tree;
    };

    [[nodiscard]] QString toolkit(const Asking &asking, const std::string &bus);
    [[nodiscard]] Tree begin(const Asking &asking, const Request &request, bool isSame);
    std::vector<SubtreeItem> refine(const Asking &asking, const Request &request, Tree &tree);
    Listing list(const Asking &asking, const Request &request);
    [[nodiscard]] bool isWalkKnown(Clock::time_point now) const;
    static void doubtAll(const Asking &asking, const Request &request, Tree &tree);
    static void doubtChildren(const Request &request, Tree &tree);
    static void doubtTexts(const Asking &asking, Tree &tree);
    static QString expectedText(const Tree &tree, const Info &info);
    static void forgetTexts(Tree &tree, const Info &info);
    static std::vector<ElementRef> doubtfulLeaves(const Walk &walk, const std::vector<ElementRef> &texts);
    static void askUnknown(const Asking &asking, const Request &request, Tree &tree,
                           const std::vector<ElementRef> &unknown);
    static void askFolded(Questions &questions, const ElementRef &ref, Info &info);
    static void askTexts(const Asking &asking, Tree &tree, const std::vector<Step> &steps);
    static std::vector<ElementRef> leavesWithChildren(const Tree &tree, const std::vector<Step> &steps);
    std::vector<SubtreeItem> finish(const Asking &asking, Tree &tree, const std::vector<Step> &steps);
    static void askFrames(const Asking &asking, const std::vector<Step> &steps, const std::vector<std::size_t> &which,
                          std::vector<SubtreeItem> &items);
    bool waitForPlaces(const Asking &asking, const std::vector<Step> &steps, std::vector<std::size_t> which,
                       std::vector<SubtreeItem> &items);

    /// Of the application that was read last.
    std::string m_toolkitOf;
    QString m_toolkit;
    Known m_known;
    /// Since when there are texts that their application cannot place.
    std::optional<Clock::time_point> m_unplacedSince;
};

} // namespace platform::desktop::atspi
