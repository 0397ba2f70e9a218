// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Linux/Accessibility/Bus/Questions.h"
#include "Platform/Linux/Accessibility/Bus/Roles.h"
#include "Platform/Linux/Accessibility/Text/TextRuns.h"

#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace platform::desktop::atspi {

/// What is known of one element of a page.
struct PageElement {
    bool isKnown = false;
    bool hasKnownChildren = false;
    bool hasKnownDetails = false;
    bool isGone = false;
    /// The application's own search named it as a text; it counts as childless until it turns out to have children.
    bool isTakenForLeaf = false;
    Kind kind = {};
    std::vector<ElementRef> children = {};
    /// The element's own text where the texts of a page are folded, once it was asked for.
    std::optional<FoldedText> folded = {};
    /// The same in the last read.
    std::optional<FoldedText> former = {};
    /// A static text's own, once it was asked for.
    std::optional<QString> text = {};
};
using PageTree = std::unordered_map<ElementRef, PageElement, ElementRefHash>;

/// What an application's own search tells of a page, in the order of a walk. Empty where it cannot search.
struct PageListing {
    std::vector<ElementRef> all = {};
    std::vector<ElementRef> texts = {};
    friend bool operator==(const PageListing &, const PageListing &) = default;
};

/// What is to be read.
struct PageRequest {
    ElementRef root;
    AXSubtreeLimits limits;
    PageListing listing = {};
    /// Whether the texts of a block stand in the block's own, as in Firefox.
    bool foldsText = false;

    [[nodiscard]] bool isLike(const PageRequest &other) const {
        return root == other.root && limits == other.limits && foldsText == other.foldsText;
    }
};

/// A walk over what is known of a page so far: each element before its children, cut off at the limits.
struct PageWalk {
    /// One place in the walk: an element, or a run of text inside one.
    struct Step {
        int depth = 0;
        ElementRef ref;
        const TextRun *run = nullptr;
    };

    PageWalk(const PageTree &tree, const PageRequest &request);
    [[nodiscard]] bool isFull() const { return std::ssize(steps) >= m_limits.maxNodes; }

    std::vector<Step> steps;
    /// The elements that were met and are not known well enough.
    std::vector<ElementRef> unknown;
    std::unordered_set<ElementRef, ElementRefHash> seen;

  private:
    [[nodiscard]] bool isComplete(const PageElement &element, int depth) const;
    void visit(const ElementRef &ref, int depth);
    void visitContent(const PageElement &element, const ElementRef &ref, int depth);

    const PageTree &m_tree;
    AXSubtreeLimits m_limits;
    bool m_foldsText;
};

/// What a bulk read asks of single elements; what is not answered in time stays unknown. Asks about the roles, the
/// children and, where texts are folded, the texts of elements.
void askElements(const Asking &asking, const PageRequest &request, PageTree &tree,
                 const std::vector<ElementRef> &unknown);
/// Asks for the static texts of a walk that are not known yet, and for what the names of some roles depend on.
void askTexts(const Asking &asking, PageTree &tree, const std::vector<PageWalk::Step> &steps);

} // namespace platform::desktop::atspi
