// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Page/PageTree.h"

namespace platform::desktop::atspi {

PageWalk::PageWalk(const PageTree &tree, const PageRequest &request)
    : m_tree(tree), m_limits(request.limits), m_foldsText(request.foldsText) {
    visit(request.root, 0);
}

bool PageWalk::isComplete(const PageElement &element, int depth) const {
    const bool needsRuns = m_foldsText && depth < m_limits.maxDepth && !isSecret(element.kind);
    const bool hasRuns = element.folded && !element.folded->unknownStyle();
    return element.isKnown && element.hasKnownChildren && (hasRuns || !needsRuns);
}

void PageWalk::visit(const ElementRef &ref, int depth) {
    if (isFull() || depth > m_limits.maxDepth || !seen.insert(ref).second) {
        return;
    }
    const auto found = m_tree.find(ref);
    const bool isKnown = found != m_tree.end() && found->second.isKnown;
    if (isKnown && found->second.isGone) {
        return;
    }
    steps.push_back({depth, ref, nullptr});
    if (!isKnown || !isComplete(found->second, depth)) {
        unknown.push_back(ref);
    }
    if (isKnown && !isSecret(found->second.kind)) {
        visitContent(found->second, ref, depth + 1);
    }
}

void PageWalk::visitContent(const PageElement &element, const ElementRef &ref, int depth) {
    static const std::vector<TextRun> none;
    const auto &runs = element.folded ? element.folded->runs() : none;
    auto run = runs.begin();
    for (std::size_t i = 0; i <= element.children.size(); ++i) {
        for (; run != runs.end() && (run->childrenBefore <= i || i == element.children.size()); ++run) {
            if (!isFull() && depth <= m_limits.maxDepth) {
                steps.push_back({depth, ref, &*run});
            }
        }
        if (i < element.children.size()) {
            visit(element.children[i], depth);
        }
    }
}

} // namespace platform::desktop::atspi
