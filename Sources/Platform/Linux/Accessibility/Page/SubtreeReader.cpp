// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Page/SubtreeReader.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
// Even what seems unchanged is read anew after this time.
constexpr auto knownLifetime = 10s;
// How soon after it was left a read goes on without asking again what it knows.
constexpr auto patience = 1s;
} // namespace

// The walk over what is known so far: each element before its children, cut off at the limits.
struct SubtreeReader::Walk {
    const Tree &tree;
    AXSubtreeLimits limits;
    bool foldsText;
    std::vector<Step> steps;
    std::vector<ElementRef> unknown;
    std::unordered_set<ElementRef, ElementRefHash> seen;

    [[nodiscard]] bool isFull() const { return std::ssize(steps) >= limits.maxNodes; }
    [[nodiscard]] bool isComplete(const Info &info, int depth) const {
        const bool needsRuns = foldsText && depth < limits.maxDepth && !isSecret(info.kind);
        const bool hasRuns = info.folded && !info.folded->unknownStyle();
        return info.isKnown && info.hasKnownChildren && (hasRuns || !needsRuns);
    }

    void visit(const ElementRef &ref, int depth) {
        if (isFull() || depth > limits.maxDepth || !seen.insert(ref).second) {
            return;
        }
        const auto found = tree.find(ref);
        const bool isKnown = found != tree.end() && found->second.isKnown;
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

    void visitContent(const Info &info, const ElementRef &ref, int depth) {
        static const std::vector<TextRun> none;
        const auto &runs = info.folded ? info.folded->runs() : none;
        auto run = runs.begin();
        for (std::size_t i = 0; i <= info.children.size(); ++i) {
            for (; run != runs.end() && (run->childrenBefore <= i || i == info.children.size()); ++run) {
                if (!isFull() && depth <= limits.maxDepth) {
                    steps.push_back({depth, ref, &*run});
                }
            }
            if (i < info.children.size()) {
                visit(info.children[i], depth);
            }
        }
    }
};

SubtreeReader::Outcome SubtreeReader::read(const Asking &asking, const ElementRef &root, AXSubtreeLimits limits,
                                           bool mayGoOn) {
    if (limits.maxNodes <= 0 || limits.maxDepth < 0) {
        return {};
    }
    const auto now = Clock::now();
    Request request{root, limits};
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

std::vector<SubtreeItem> SubtreeReader::refine(const Asking &asking, const Request &request, Tree &tree) {
    const auto &root = request.root;
    const auto &connection = asking.connection;
    while (Clock::now() < asking.deadline && connection.isOpen() && !connection.isSilent(root.bus)) {
        Walk walk{tree, request.limits, request.foldsText, {}, {}, {}};
        walk.visit(root, 0);
        if (walk.unknown.empty()) {
            walk.unknown = doubtfulLeaves(walk, request.listing.texts);
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
        askUnknown(asking, request, tree, walk.unknown);
    }
    return {};
}

QString SubtreeReader::toolkit(const Asking &asking, const std::string &bus) {
    if (bus != m_toolkitOf) {
        const auto question = calls::property({bus, rootPath}, "org.a11y.atspi.Application", "ToolkitName");
        const auto name = asking.connection.call(question, asking.deadline).stringProperty();
        m_toolkitOf = name ? bus : std::string();
        m_toolkit = name.value_or(QString());
    }
    return m_toolkit;
}

// A search goes through the whole page, even a long one; the second is spared where the first finds what it found
// before.
SubtreeReader::Listing SubtreeReader::list(const Asking &asking, const Request &request) {
    const int limit = request.limits.maxNodes;
    const auto search = [&](const Call &call) {
        const auto reply = asking.connection.call(call, asking.deadline);
        asking.giveWay();
        return reply.references(static_cast<std::size_t>(limit)).value_or(std::vector<ElementRef>());
    };
    auto all = search(calls::allMatches(request.root, limit));
    const auto &last = m_known.request;
    const bool isKnown =
        last.isLike(request) && m_known.isWhole && last.listing.all == all && isWalkKnown(Clock::now());
    if (all.empty() || isKnown) {
        return {std::move(all), isKnown ? last.listing.texts : std::vector<ElementRef>()};
    }
    return {std::move(all), search(calls::staticTextMatches(request.root, limit))};
}

bool SubtreeReader::isWalkKnown(Clock::time_point now) const {
    return now - m_known.walkedAt < knownLifetime;
}

// What is known before the first question about a single element.
SubtreeReader::Tree SubtreeReader::begin(const Asking &asking, const Request &request, bool isSame) {
    const bool isKnown = isSame && m_known.isWhole && isWalkKnown(m_known.begunAt);
    if (isKnown && request.foldsText) {
        auto tree = std::exchange(m_known.tree, {});
        doubtAll(asking, request, tree);
        return tree;
    }
    Tree tree;
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
    // Most elements of a page are text leaves. That the application names them spares two questions about each.
    for (const auto &ref : request.listing.texts) {
        auto &info = tree[ref];
        if (!info.isKnown) {
            info.isKnown = true;
            info.hasKnownChildren = true;
            info.isTakenForLeaf = true;
            info.kind.role = Role::staticText;
        }
    }
    return tree;
}

// What is still there keeps its role; a leaf that has children now shows it by what lies between the leaves.
void SubtreeReader::doubtChildren(const Request &request, Tree &tree) {
    std::unordered_set<ElementRef, ElementRefHash> listed(request.listing.all.begin(), request.listing.all.end());
    listed.insert(request.root);
    std::erase_if(tree, [&](const auto &entry) { return !listed.contains(entry.first) || entry.second.isGone; });
    for (auto &[ref, info] : tree) {
        info.hasKnownChildren = info.isTakenForLeaf;
    }
}

// Where texts are folded a child stands in its parent's text, so an unchanged text without children has none. Roles
// are believed, except where a password may be typed; styles are those of the text.
void SubtreeReader::doubtAll(const Asking &asking, const Request &request, Tree &tree) {
    std::vector<ElementRef> all;
    for (auto &[ref, info] : tree) {
        all.push_back(ref);
        if (info.kind.role == Role::entry || info.kind.role == Role::passwordText || info.isGone) {
            info = {};
            continue;
        }
        const bool hadChildren = !info.children.empty();
        info.hasKnownChildren = !hadChildren && info.folded;
        info.former = std::exchange(info.folded, std::nullopt);
    }
    askUnknown(asking, request, tree, all);
}

// Several text leaves of one element stand together in its own text: one question tells whether they are what they
// were.
void SubtreeReader::doubtTexts(const Asking &asking, Tree &tree) {
    Questions questions;
    for (const auto &entry : tree) {
        const auto &info = entry.second;
        const auto texts = std::count_if(info.children.begin(), info.children.end(), [&](const auto &child) {
            const auto found = tree.find(child);
            return found != tree.end() && found->second.text;
        });
        if (texts < 2) {
            forgetTexts(tree, info);
            continue;
        }
        questions.ask(calls::text(entry.first, 0, -1), [&tree, &info](const Reply &reply) {
            if (reply.string() != expectedText(tree, info)) {
                forgetTexts(tree, info);
            }
        });
    }
    questions.run(asking);
}

QString SubtreeReader::expectedText(const Tree &tree, const Info &info) {
    QString expected;
    for (const auto &child : info.children) {
        const auto found = tree.find(child);
        const bool isLeaf = found != tree.end() && found->second.text && !found->second.kind.hasChildren;
        expected += isLeaf ? *found->second.text : QString(QChar(QChar::ObjectReplacementCharacter));
    }
    return expected;
}

void SubtreeReader::forgetTexts(Tree &tree, const Info &info) {
    for (const auto &child : info.children) {
        const auto found = tree.find(child);
        if (found != tree.end()) {
            found->second.text.reset();
        }
    }
}

// A text that was named but not met lies below one that was taken for a leaf: the one that was met before it. (Or it
// lies beyond the limits; then that one turns out to be a leaf indeed.)
std::vector<ElementRef> SubtreeReader::doubtfulLeaves(const Walk &walk, const std::vector<ElementRef> &texts) {
    std::vector<ElementRef> doubtful;
    const auto end = std::find_if(texts.rbegin(), texts.rend(), [&](const auto &ref) {
                         return !walk.isFull() || walk.seen.contains(ref);
                     }).base();
    const ElementRef *met = nullptr;
    for (auto text = texts.begin(); text != end; ++text) {
        if (walk.seen.contains(*text)) {
            met = &*text;
        } else if (met != nullptr) {
            if (walk.tree.at(*met).isTakenForLeaf) {
                doubtful.push_back(*met);
            }
            met = nullptr;
        }
    }
    return doubtful;
}

} // namespace platform::desktop::atspi
