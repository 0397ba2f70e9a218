// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Page/SubtreeReader.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
// Even a page that seems unchanged is walked anew after this time.
constexpr auto knownLifetime = 10s;
// How soon another read may go on where an unfinished one stopped.
constexpr auto patience = 1s;

QString expectedText(const PageTree &tree, const PageElement &element) {
    QString expected;
    for (const auto &child : element.children) {
        const auto found = tree.find(child);
        const bool isLeaf = found != tree.end() && found->second.text && !found->second.kind.hasChildren;
        expected += isLeaf ? *found->second.text : QString(QChar(QChar::ObjectReplacementCharacter));
    }
    return expected;
}

void forgetTexts(PageTree &tree, const PageElement &element) {
    for (const auto &child : element.children) {
        const auto found = tree.find(child);
        if (found != tree.end()) {
            found->second.text.reset();
        }
    }
}

// The text leaves of one element stand together in its own text, so one question tells whether they have changed.
void doubtTexts(const Asking &asking, PageTree &tree) {
    Questions questions;
    for (const auto &entry : tree) {
        const auto &element = entry.second;
        const auto texts = std::count_if(element.children.begin(), element.children.end(), [&](const auto &child) {
            const auto found = tree.find(child);
            return found != tree.end() && found->second.text;
        });
        if (texts < 2) {
            forgetTexts(tree, element);
            continue;
        }
        questions.ask(calls::text(entry.first), [&tree, &element](const Reply &reply) {
            if (reply.as<QString>() != expectedText(tree, element)) {
                forgetTexts(tree, element);
            }
        });
    }
    questions.run(asking);
}

// An element that is still there keeps its role; a leaf that has got children is found by what lies between the leaves.
void doubtChildren(const PageRequest &request, PageTree &tree) {
    std::unordered_set<ElementRef, ElementRefHash> listed(request.listing.all.begin(), request.listing.all.end());
    listed.insert(request.root);
    std::erase_if(tree, [&](const auto &entry) { return !listed.contains(entry.first) || entry.second.isGone; });
    for (auto &[ref, element] : tree) {
        element.hasKnownChildren = element.isTakenForLeaf;
    }
}

// Where texts are folded a child stands in its parent's text, so an unchanged text without children still has none.
// Roles are trusted, except where a password may be typed; an unchanged text keeps its styles.
void doubtAll(const Asking &asking, const PageRequest &request, PageTree &tree) {
    std::vector<ElementRef> all;
    for (auto &[ref, element] : tree) {
        all.push_back(ref);
        if (element.kind.role == Role::entry || element.kind.role == Role::passwordText || element.isGone) {
            element = {};
            continue;
        }
        const bool hadChildren = !element.children.empty();
        element.hasKnownChildren = !hadChildren && element.folded;
        element.former = std::exchange(element.folded, std::nullopt);
    }
    askElements(asking, request, tree, all);
}

// A text that the search named but the walk did not meet lies below the element taken for a leaf that was met just
// before it. (Or it lies beyond the limits; then that element turns out to be a leaf indeed.)
std::vector<ElementRef> doubtfulLeaves(const PageTree &tree, const PageWalk &walk,
                                       const std::vector<ElementRef> &texts) {
    std::vector<ElementRef> doubtful;
    const auto end = std::find_if(texts.rbegin(), texts.rend(), [&](const auto &ref) {
                         return !walk.isFull() || walk.seen.contains(ref);
                     }).base();
    const ElementRef *met = nullptr;
    for (auto text = texts.begin(); text != end; ++text) {
        if (walk.seen.contains(*text)) {
            met = &*text;
        } else if (met != nullptr) {
            if (tree.at(*met).isTakenForLeaf) {
                doubtful.push_back(*met);
            }
            met = nullptr;
        }
    }
    return doubtful;
}

// Elements that were taken for leaves but have a stand-in for a child in their text.
std::vector<ElementRef> leavesWithChildren(const PageTree &tree, const std::vector<PageWalk::Step> &steps) {
    std::vector<ElementRef> found;
    for (const auto &step : steps) {
        const auto &element = tree.at(step.ref);
        if (element.isTakenForLeaf && element.text &&
            element.text->contains(QChar(QChar::ObjectReplacementCharacter))) {
            found.push_back(step.ref);
        }
    }
    return found;
}
} // namespace

SubtreeReader::Outcome SubtreeReader::read(const Asking &asking, const ElementRef &root, AXSubtreeLimits limits,
                                           bool mayGoOn) {
    if (limits.maxNodes <= 0 || limits.maxDepth < 0) {
        return {};
    }
    const auto now = Clock::now();
    PageRequest request{root, limits};
    const QString kindOfToolkit = toolkit(asking, root.bus);
    request.foldsText = kindOfToolkit == QLatin1StringView("Gecko");
    if (kindOfToolkit == QLatin1StringView("Chromium")) {
        request.listing = list(asking, request);
    }
    if (Clock::now() >= asking.deadline || asking.connection.isSilent(root.bus)) {
        return {};
    }
    const bool isSame = m_known.request.isLike(request);
    const bool goesOn = isSame && mayGoOn && !m_known.isWhole && now - m_known.leftAt < patience;
    m_known.begunAt = goesOn ? m_known.begunAt : now;
    auto tree = goesOn ? std::exchange(m_known.tree, {}) : begin(asking, request, isSame);
    auto items = refine(asking, request, tree);
    m_known.request = std::move(request);
    m_known.isWhole = !items.empty();
    m_known.leftAt = Clock::now();
    m_known.tree = std::move(tree);
    return {std::move(items), m_known.begunAt};
}

std::vector<AXSubtreeNode> SubtreeReader::refine(const Asking &asking, const PageRequest &request, PageTree &tree) {
    const auto &root = request.root;
    const auto &connection = asking.connection;
    while (Clock::now() < asking.deadline && connection.isOpen() && !connection.isSilent(root.bus)) {
        PageWalk walk(tree, request);
        if (walk.unknown.empty()) {
            walk.unknown = doubtfulLeaves(tree, walk, request.listing.texts);
        }
        if (walk.unknown.empty()) {
            askTexts(asking, tree, walk.steps);
            walk.unknown = leavesWithChildren(tree, walk.steps);
        }
        if (walk.unknown.empty()) {
            auto items = finish(asking, tree, walk.steps);
            std::erase_if(tree, [&](const auto &entry) { return !walk.seen.contains(entry.first); });
            return items;
        }
        askElements(asking, request, tree, walk.unknown);
    }
    return {};
}

QString SubtreeReader::toolkit(const Asking &asking, const std::string &bus) {
    if (bus != m_toolkitOf) {
        const auto question = calls::property({bus, rootPath}, "org.a11y.atspi.Application", "ToolkitName");
        const auto name = asking.connection.call(question, asking.deadline).as<QString>();
        m_toolkitOf = name ? bus : std::string();
        m_toolkit = name.value_or(QString());
    }
    return m_toolkit;
}

// A search goes through the whole page, even a long one. The second one is skipped when the first one's outcome has not
// changed.
PageListing SubtreeReader::list(const Asking &asking, const PageRequest &request) {
    const int limit = request.limits.maxNodes;
    const auto search = [&](const Call &call) {
        const auto reply = asking.connection.call(call, asking.deadline);
        asking.giveWay();
        return reply.references(static_cast<std::size_t>(limit)).value_or(std::vector<ElementRef>());
    };
    auto all = search(calls::matches(request.root, {.limit = limit}));
    const auto &last = m_known.request;
    const bool isKnown =
        last.isLike(request) && m_known.isWhole && last.listing.all == all && isWalkKnown(Clock::now());
    if (all.empty() || isKnown) {
        return {std::move(all), isKnown ? last.listing.texts : std::vector<ElementRef>()};
    }
    return {std::move(all), search(calls::matches(request.root, {.role = Role::staticText, .limit = limit}))};
}

bool SubtreeReader::isWalkKnown(Clock::time_point now) const {
    return now - m_known.walkedAt < knownLifetime;
}

// What is known before the first question about a single element.
PageTree SubtreeReader::begin(const Asking &asking, const PageRequest &request, bool isSame) {
    const bool isKnown = isSame && m_known.isWhole && isWalkKnown(m_known.begunAt);
    if (isKnown && request.foldsText) {
        auto tree = std::exchange(m_known.tree, {});
        doubtAll(asking, request, tree);
        return tree;
    }
    PageTree tree;
    if (isKnown && !request.listing.all.empty()) {
        tree = std::exchange(m_known.tree, {});
        doubtTexts(asking, tree);
        // If the same elements stand in the same order as a moment ago, nothing has moved between them.
        if (m_known.request.listing == request.listing) {
            return tree;
        }
        doubtChildren(request, tree);
    } else {
        m_known.walkedAt = m_known.begunAt;
    }
    // Most elements of a page are text leaves; naming them in one search saves two questions about each.
    for (const auto &ref : request.listing.texts) {
        auto &element = tree[ref];
        if (!element.isKnown) {
            element.isKnown = element.hasKnownChildren = element.isTakenForLeaf = true;
            element.kind.role = Role::staticText;
        }
    }
    return tree;
}

std::vector<AXSubtreeNode> SubtreeReader::finish(const Asking &asking, const PageTree &tree,
                                                 const std::vector<PageWalk::Step> &steps) {
    std::vector<AXSubtreeNode> items;
    for (const auto &step : steps) {
        const auto &element = tree.at(step.ref);
        auto &item = items.emplace_back(AXSubtreeNode{.depth = step.depth, .role = {}, .value = {}, .frame = {}});
        item.role = step.run != nullptr ? QString(axRole::staticText) : axRoleName(element.kind);
        if (step.run != nullptr) {
            item.value = step.run->text;
        } else if (item.role == axRole::staticText) {
            item.value = element.text;
        }
    }
    const bool isPlaced = m_places.read(asking, steps, items);
    return isPlaced && Clock::now() < asking.deadline ? items : std::vector<AXSubtreeNode>();
}

} // namespace platform::desktop::atspi
