// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Accessibility/SubtreeReader.h"

#include "Platform/Linux/Accessibility/ApplicationCache.h"
#include "Platform/Linux/Accessibility/FlatText.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
constexpr auto cacheAvoidance = 60s;
// One listed element costs an application about as much as a third of a question about it.
constexpr std::size_t cacheWorthwhile = 4;

bool namesDependOnStates(Role role) {
    return role == Role::text || role == Role::entry || role == Role::comboBox;
}

bool isStaticText(const Kind &kind) {
    return axRoleName(kind) == axRole::staticText;
}
} // namespace

// The walk over what is known so far: each element before its children, cut off at the limits.
struct SubtreeReader::Walk {
    const Tree &tree;
    AXSubtreeLimits limits;
    std::vector<Step> steps;
    std::vector<ElementRef> unknown;
    std::unordered_set<ElementRef, ElementRefHash> seen;

    [[nodiscard]] bool isFull() const { return std::ssize(steps) >= limits.maxNodes; }

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
        if (!isKnown || (!found->second.hasKnownChildren && depth < limits.maxDepth)) {
            unknown.push_back(ref);
        }
        if (isKnown) {
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
    Tree tree;
    if (limits.maxNodes <= 0 || limits.maxDepth < 0) {
        return {};
    }
    const QString kindOfToolkit = toolkit(connection, root.bus, deadline);
    const auto avoided = m_avoidCacheUntil.find(root.bus);
    if (kindOfToolkit == QLatin1StringView("Chromium") &&
        (avoided == m_avoidCacheUntil.end() || avoided->second < Clock::now())) {
        readCache(connection, root.bus, tree, deadline);
    }
    const auto maxNodes = static_cast<std::size_t>(limits.maxNodes);
    const auto listed = tree.size();
    for (int round = 0; round <= limits.maxDepth + 1; ++round) {
        Walk walk{tree, limits, {}, {}, {}};
        walk.visit(root, 0);
        if (walk.unknown.empty()) {
            if (listed > cacheWorthwhile * walk.steps.size() + maxNodes) {
                m_avoidCacheUntil[root.bus] = Clock::now() + cacheAvoidance;
            }
            return fill(connection, tree, walk.steps, deadline);
        }
        Questions questions;
        askUnknown(questions, tree, walk.unknown, maxNodes, kindOfToolkit == QLatin1StringView("Gecko"));
        questions.run(connection, deadline);
        if (Clock::now() >= deadline || connection.isSilent(root.bus)) {
            return {};
        }
    }
    return {};
}

QString SubtreeReader::toolkit(Connection &connection, const std::string &bus, Deadline deadline) {
    const auto known = m_toolkits.find(bus);
    if (known != m_toolkits.end()) {
        return known->second;
    }
    const auto name =
        connection.call(calls::property({bus, rootPath}, "org.a11y.atspi.Application", "ToolkitName"), deadline)
            .stringProperty();
    if (name) {
        m_toolkits[bus] = *name;
    }
    return name.value_or(QString());
}

void SubtreeReader::readCache(Connection &connection, const std::string &bus, Tree &tree, Deadline deadline) {
    const auto items = listApplication(connection, bus, deadline);
    if (items.empty() && Clock::now() >= deadline) {
        m_avoidCacheUntil[bus] = Clock::now() + cacheAvoidance;
    }
    tree.reserve(items.size());
    std::size_t places = 0;
    for (const auto &item : items) {
        auto &info = tree[item.ref];
        info.isKnown = true;
        info.hasStates = true;
        // Whoever claims more children than there are elements is not believed.
        places += item.childCount;
        info.hasKnownChildren = places <= items.size();
        info.kind.role = item.role;
        info.kind.states = item.states;
        info.kind.hasChildren = item.childCount > 0;
        info.name = item.name;
        info.children.resize(info.hasKnownChildren ? item.childCount : 0);
    }
    for (const auto &item : items) {
        const auto parent = tree.find(item.parent);
        if (parent != tree.end() && item.index < parent->second.children.size()) {
            parent->second.children[item.index] = item.ref;
        }
    }
    // An application lists what it has got round to; whose children are not all there is asked for them.
    for (auto &[ref, info] : tree) {
        if (std::any_of(info.children.begin(), info.children.end(), [](const auto &child) { return child.isNull(); })) {
            info.hasKnownChildren = false;
            info.children.clear();
        }
    }
}

void SubtreeReader::askUnknown(Questions &questions, Tree &tree, const std::vector<ElementRef> &unknown,
                               std::size_t maxChildren, bool foldsText) {
    for (const auto &ref : unknown) {
        auto &info = tree[ref];
        info.isKnown = true;
        info.hasKnownChildren = true;
        questions.ask(calls::role(ref), [&info](const Reply &reply) {
            info.kind.role = static_cast<Role>(reply.number().value_or(static_cast<std::uint32_t>(Role::unknown)));
            info.isGone = reply.isGone();
        });
        questions.ask(calls::children(ref), [&info, maxChildren](const Reply &reply) {
            info.children = reply.references(maxChildren).value_or(std::vector<ElementRef>());
            info.kind.hasChildren = !info.children.empty();
        });
        if (foldsText) {
            questions.ask(calls::text(ref, 0, -1),
                          [&info](const Reply &reply) { info.runs = textRuns(reply.string().value_or(QString())); });
        }
    }
}

namespace {
// What the names of some roles depend on, for the few elements of these roles.
void askDetails(Questions &questions, const ElementRef &ref, Kind &kind) {
    questions.ask(calls::states(ref), [&kind](const Reply &reply) { kind.states = reply.states().value_or(States()); });
    questions.ask(calls::attributes(ref),
                  [&kind](const Reply &reply) { kind.attributes = reply.attributes().value_or(Attributes()); });
}

void askRange(Questions &questions, const ElementRef &ref, const TextRun &run, std::optional<PixelRect> &frame) {
    questions.ask({ref, textInterface, "GetRangeExtents",
                   [from = run.from, to = run.to](sd_bus_message *message) {
                       return sd_bus_message_append(message, "iiu", from, to, 0U);
                   }},
                  [&frame](const Reply &reply) { frame = reply.extents(); });
}
} // namespace

std::vector<SubtreeItem> SubtreeReader::fill(Connection &connection, Tree &tree, const std::vector<Step> &steps,
                                             Deadline deadline) {
    Questions details;
    for (const auto &step : steps) {
        auto &info = tree[step.ref];
        if (step.run == nullptr && namesDependOnStates(info.kind.role)) {
            askDetails(details, step.ref, info.kind);
        }
    }
    details.run(connection, deadline);
    std::vector<SubtreeItem> items(steps.size());
    Questions texts;
    Questions names;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        auto &item = items[i];
        const auto &step = steps[i];
        const auto &info = tree[step.ref];
        item.depth = step.depth;
        if (step.run != nullptr) {
            item.role = axRole::staticText;
            item.value = step.run->text;
            askRange(texts, step.ref, *step.run, item.frame);
            continue;
        }
        item.role = axRoleName(info.kind);
        if (!isStaticText(info.kind)) {
            continue;
        }
        texts.ask(calls::extents(step.ref), [&item](const Reply &reply) { item.frame = reply.extents(); });
        if (info.kind.role == Role::staticText && !info.name.isEmpty()) {
            // The listing came a moment ago, and there a text leaf is named with its text.
            item.value = info.name;
            continue;
        }
        texts.ask(calls::text(step.ref, 0, -1), [&names, &item, ref = step.ref](const Reply &reply) {
            item.value = reply.string();
            if (!item.value || item.value->isEmpty()) {
                names.ask(calls::name(ref), [&item](const Reply &name) { item.value = name.stringProperty(); });
            }
        });
    }
    texts.run(connection, deadline);
    names.run(connection, deadline);
    return Clock::now() < deadline ? items : std::vector<SubtreeItem>();
}

} // namespace platform::desktop::atspi
