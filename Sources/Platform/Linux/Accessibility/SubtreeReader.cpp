// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Accessibility/SubtreeReader.h"

#include "Platform/Linux/Accessibility/FlatText.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
// Even what seems unchanged is read anew after this time.
constexpr auto knownLifetime = 5s;
// How soon after it was left a read goes on without asking again what it knows.
constexpr auto patience = 1s;

// Whether it is one by its role; the states may yet say that it is a field.
bool mayBeStaticText(const Kind &kind) {
    const bool isText = kind.role == Role::staticText || kind.role == Role::label || kind.role == Role::text;
    return isText && !kind.hasChildren;
}

// Nobody reads passwords, nor the leaves that stand for one's characters.
bool isSecret(const Kind &kind) {
    return kind.role == Role::passwordText;
}

bool namesDependOnStates(Role role) {
    return role == Role::text || role == Role::entry || role == Role::comboBox;
}

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
        return info.isKnown && info.hasKnownChildren && (info.hasKnownRuns || !needsRuns);
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
        auto run = info.runs.begin();
        for (std::size_t i = 0; i <= info.children.size(); ++i) {
            for (; run != info.runs.end() && (run->childrenBefore <= i || i == info.children.size()); ++run) {
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

std::vector<SubtreeItem> SubtreeReader::read(Connection &connection, const ElementRef &root, AXSubtreeLimits limits,
                                             Deadline deadline) {
    if (limits.maxNodes <= 0 || limits.maxDepth < 0) {
        return {};
    }
    Request request{root, limits};
    const QString kindOfToolkit = toolkit(connection, root.bus, deadline);
    request.foldsText = kindOfToolkit == QLatin1StringView("Gecko");
    if (kindOfToolkit == QLatin1StringView("Chromium")) {
        request.listing = list(connection, root, limits.maxNodes, deadline);
    }
    if (Clock::now() >= deadline || connection.isSilent(root.bus)) {
        return {};
    }
    auto tree = begin(connection, request, deadline);
    auto items = refine(connection, request, tree, deadline);
    m_known.request = std::move(request);
    m_known.isWhole = !items.empty();
    m_known.leftAt = Clock::now();
    m_known.tree = std::move(tree);
    return items;
}

std::vector<SubtreeItem> SubtreeReader::refine(Connection &connection, const Request &request, Tree &tree,
                                               Deadline deadline) {
    const auto &root = request.root;
    while (Clock::now() < deadline && connection.isOpen() && !connection.isSilent(root.bus)) {
        Walk walk{tree, request.limits, request.foldsText, {}, {}, {}};
        walk.visit(root, 0);
        if (walk.unknown.empty()) {
            walk.unknown = doubtfulLeaves(walk, request.listing.texts);
        }
        if (walk.unknown.empty()) {
            askTexts(connection, tree, walk.steps, deadline);
            walk.unknown = leavesWithChildren(tree, walk.steps);
        }
        if (walk.unknown.empty()) {
            return finish(connection, tree, walk.steps, deadline);
        }
        askUnknown(connection, request, tree, walk.unknown, deadline);
    }
    return {};
}

QString SubtreeReader::toolkit(Connection &connection, const std::string &bus, Deadline deadline) {
    if (bus != m_toolkitOf) {
        const auto name =
            connection.call(calls::property({bus, rootPath}, "org.a11y.atspi.Application", "ToolkitName"), deadline)
                .stringProperty();
        m_toolkitOf = name ? bus : std::string();
        m_toolkit = name.value_or(QString());
    }
    return m_toolkit;
}

SubtreeReader::Listing SubtreeReader::list(Connection &connection, const ElementRef &root, int limit,
                                           Deadline deadline) {
    const auto replies =
        connection.callAll({calls::allMatches(root, limit), calls::staticTextMatches(root, limit)}, deadline);
    const auto most = static_cast<std::size_t>(limit);
    return {replies[0].references(most).value_or(std::vector<ElementRef>()),
            replies[1].references(most).value_or(std::vector<ElementRef>())};
}

// What is known before the first question about a single element. If the same elements stand in the same order as a
// moment ago, nothing has moved between them; only their texts can have changed. A read that ran out of time goes on.
SubtreeReader::Tree SubtreeReader::begin(Connection &connection, const Request &request, Deadline deadline) {
    const auto now = Clock::now();
    const auto &last = m_known.request;
    const bool isSame = last.root == request.root && last.listing == request.listing &&
                        (!last.listing.all.empty() || last.limits == request.limits);
    if (isSame && !m_known.isWhole && now - m_known.leftAt < patience) {
        return std::exchange(m_known.tree, {});
    }
    if (isSame && !last.listing.all.empty() && now - m_known.begunAt < knownLifetime) {
        auto tree = std::exchange(m_known.tree, {});
        std::unordered_set<ElementRef, ElementRefHash> listed(last.listing.all.begin(), last.listing.all.end());
        listed.insert(request.root);
        std::erase_if(tree, [&](const auto &entry) { return !listed.contains(entry.first); });
        doubtTexts(connection, tree, deadline);
        return tree;
    }
    m_known.begunAt = now;
    // Most elements of a page are text leaves. That the application names them spares two questions about each.
    Tree tree;
    for (const auto &ref : request.listing.texts) {
        auto &info = tree[ref];
        info.isKnown = true;
        info.hasKnownChildren = true;
        info.isTakenForLeaf = true;
        info.kind.role = Role::staticText;
    }
    return tree;
}

// Several text leaves of one element stand together in its own text: one question tells whether they are what they
// were.
void SubtreeReader::doubtTexts(Connection &connection, Tree &tree, Deadline deadline) {
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
    questions.run(connection, deadline);
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

// Text is asked for a round later than the role, when it cannot be a password any more; that is along with the
// questions about the level below. What is not answered in time stays unknown.
void SubtreeReader::askUnknown(Connection &connection, const Request &request, Tree &tree,
                               const std::vector<ElementRef> &unknown, Deadline deadline) {
    Questions questions;
    for (const auto &ref : unknown) {
        auto &info = tree[ref];
        if (std::exchange(info.isTakenForLeaf, false)) {
            info.isKnown = false;
            info.hasKnownChildren = false;
        }
        if (connection.isSilent(ref.bus)) {
            info.isKnown = true;
            info.isGone = true;
            continue;
        }
        if (info.isKnown && request.foldsText && !info.hasKnownRuns && !isSecret(info.kind)) {
            questions.ask(calls::text(ref, 0, -1), [&info](const Reply &reply) {
                info.hasKnownRuns = reply.isAnswered();
                info.runs = textRuns(reply.string().value_or(QString()));
            });
        }
        if (!info.isKnown) {
            questions.ask(calls::role(ref), [&info](const Reply &reply) {
                info.isKnown = reply.isAnswered();
                info.kind.role = static_cast<Role>(reply.number().value_or(static_cast<std::uint32_t>(Role::unknown)));
                info.isGone = reply.isError();
            });
        }
        if (!info.hasKnownChildren) {
            const auto most = static_cast<std::size_t>(request.limits.maxNodes);
            questions.ask(calls::children(ref), [&info, most](const Reply &reply) {
                info.hasKnownChildren = reply.isAnswered();
                info.children = reply.references(most).value_or(std::vector<ElementRef>());
                info.kind.hasChildren = !info.children.empty();
            });
        }
    }
    questions.run(connection, deadline);
}

namespace {
// What the names of some roles depend on, for the few elements of these roles.
void askDetails(Questions &questions, const ElementRef &ref, Kind &kind, bool &isAnswered) {
    questions.ask(calls::states(ref), [&kind, &isAnswered](const Reply &reply) {
        kind.states = reply.states().value_or(States());
        isAnswered = reply.isAnswered();
    });
    questions.ask(calls::attributes(ref),
                  [&kind](const Reply &reply) { kind.attributes = reply.attributes().value_or(Attributes()); });
}

Call rangeExtents(const ElementRef &ref, const TextRun &run) {
    return {ref, textInterface, "GetRangeExtents", [from = run.from, to = run.to](sd_bus_message *message) {
                return sd_bus_message_append(message, "iiu", from, to, 0U);
            }};
}
} // namespace

void SubtreeReader::askTexts(Connection &connection, Tree &tree, const std::vector<Step> &steps, Deadline deadline) {
    Questions texts;
    for (const auto &step : steps) {
        auto &info = tree[step.ref];
        if (step.run != nullptr || (info.text && info.hasKnownDetails)) {
            continue;
        }
        if (namesDependOnStates(info.kind.role)) {
            askDetails(texts, step.ref, info.kind, info.hasKnownDetails);
        }
        if (mayBeStaticText(info.kind) && !info.text) {
            texts.ask(calls::text(step.ref, 0, -1), [&info](const Reply &reply) {
                info.text = reply.isAnswered() ? std::optional(reply.string().value_or(QString())) : std::nullopt;
            });
        }
    }
    texts.run(connection, deadline);
    // The labels of some toolkits have a name alone.
    for (const auto &step : steps) {
        auto &info = tree[step.ref];
        if (info.text && info.text->isEmpty()) {
            texts.ask(calls::name(step.ref),
                      [&info](const Reply &reply) { info.text = reply.stringProperty().value_or(QString()); });
        }
    }
    texts.run(connection, deadline);
}

// What was taken for a leaf but has a stand-in for a child in its text.
std::vector<ElementRef> SubtreeReader::leavesWithChildren(const Tree &tree, const std::vector<Step> &steps) {
    std::vector<ElementRef> found;
    for (const auto &step : steps) {
        const auto &info = tree.at(step.ref);
        if (info.isTakenForLeaf && info.text && info.text->contains(QChar(QChar::ObjectReplacementCharacter))) {
            found.push_back(step.ref);
        }
    }
    return found;
}

std::vector<SubtreeItem> SubtreeReader::finish(Connection &connection, Tree &tree, const std::vector<Step> &steps,
                                               Deadline deadline) {
    std::vector<SubtreeItem> items(steps.size());
    for (std::size_t i = 0; i < steps.size(); ++i) {
        auto &item = items[i];
        const auto &step = steps[i];
        item.depth = step.depth;
        item.role = step.run != nullptr ? QString(axRole::staticText) : axRoleName(tree[step.ref].kind);
        if (step.run != nullptr) {
            item.value = step.run->text;
        } else if (item.role == axRole::staticText) {
            item.value = tree[step.ref].text;
        }
    }
    askFrames(connection, steps, items, deadline);
    return Clock::now() < deadline ? items : std::vector<SubtreeItem>();
}

void SubtreeReader::askFrames(Connection &connection, const std::vector<Step> &steps, std::vector<SubtreeItem> &items,
                              Deadline deadline) {
    Questions frames;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        auto &frame = items[i].frame;
        const auto take = [&frame](const Reply &reply) { frame = reply.extents(); };
        // Between the words of a page stand many blank texts, whose places are nobody's concern.
        if (!items[i].value || items[i].value->trimmed().isEmpty()) {
            continue;
        }
        frames.ask(steps[i].run != nullptr ? rangeExtents(steps[i].ref, *steps[i].run) : calls::extents(steps[i].ref),
                   take);
    }
    frames.run(connection, deadline);
}

} // namespace platform::desktop::atspi
