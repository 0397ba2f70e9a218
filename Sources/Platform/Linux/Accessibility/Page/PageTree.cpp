// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Page/PageTree.h"

namespace platform::desktop::atspi {

namespace {
// By its role; the states may still say that it is a field.
bool mayBeStaticText(const Kind &kind) {
    const bool isText = kind.role == Role::staticText || kind.role == Role::label || kind.role == Role::text;
    return isText && !kind.hasChildren;
}

bool namesDependOnStates(Role role) {
    return role == Role::text || role == Role::entry || role == Role::comboBox;
}

// What the names of some roles depend on, for the few elements of these roles.
void askDetails(Questions &questions, const ElementRef &ref, PageElement &element) {
    questions.ask(calls::states(ref), [&element](const Reply &reply) {
        element.kind.states = reply.as<States>().value_or(States());
        element.hasKnownDetails = reply.isAnswered();
    });
    questions.fetch(calls::attributes(ref), element.kind.attributes);
}

// First the text, then style after style.
void askFolded(Questions &questions, const ElementRef &ref, PageElement &element) {
    if (!element.folded) {
        questions.ask(calls::text(ref), [&element](const Reply &reply) {
            if (!reply.isAnswered()) {
                return;
            }
            auto former = std::exchange(element.former, std::nullopt);
            auto text = reply.as<QString>().value_or(QString());
            if (former && former->text() == text) {
                element.folded = std::move(former);
                return;
            }
            element.hasKnownChildren = element.hasKnownChildren && !former;
            element.folded.emplace(text);
        });
    } else if (const auto offset = element.folded->unknownStyle()) {
        questions.ask(calls::attributeRun(ref, *offset), [&element](const Reply &reply) {
            if (reply.isAnswered()) {
                const auto [style, from, to] =
                    reply.as<Attributes, int, int>().value_or(std::tuple(Attributes(), -1, -1));
                const auto size = style.find("size");
                element.folded->addStyle(to, size != style.end() ? size->second : std::string());
            }
        });
    }
}
} // namespace

// A text is asked for one round after the role, when it is known not to be a password; the questions about the level
// below go out in the same round.
void askElements(const Asking &asking, const PageRequest &request, PageTree &tree,
                 const std::vector<ElementRef> &unknown) {
    Questions questions;
    for (const auto &ref : unknown) {
        auto &element = tree[ref];
        if (std::exchange(element.isTakenForLeaf, false)) {
            element.isKnown = false;
            element.hasKnownChildren = false;
        }
        if (asking.connection.isSilent(ref.bus)) {
            // What a hung application shows inside the page is left out; the page's own application may answer later.
            element.isKnown = ref.bus != request.root.bus;
            element.isGone = element.isKnown;
            continue;
        }
        if (element.isKnown && request.foldsText && !isSecret(element.kind)) {
            askFolded(questions, ref, element);
        }
        if (!element.isKnown) {
            questions.ask(calls::role(ref), [&element](const Reply &reply) {
                element.isKnown = reply.isAnswered();
                element.kind.role = reply.as<Role>().value_or(Role::unknown);
                element.isGone = reply.isError();
            });
        }
        if (!element.hasKnownChildren) {
            const auto most = static_cast<std::size_t>(request.limits.maxNodes);
            questions.ask(calls::children(ref), [&element, most](const Reply &reply) {
                element.hasKnownChildren = reply.isAnswered();
                element.children = reply.references(most).value_or(std::vector<ElementRef>());
                element.kind.hasChildren = !element.children.empty();
            });
        }
    }
    questions.run(asking);
}

void askTexts(const Asking &asking, PageTree &tree, const std::vector<PageWalk::Step> &steps) {
    Questions texts;
    for (const auto &step : steps) {
        auto &element = tree[step.ref];
        if (step.run != nullptr || (element.text && element.hasKnownDetails)) {
            continue;
        }
        if (namesDependOnStates(element.kind.role)) {
            askDetails(texts, step.ref, element);
        }
        if (mayBeStaticText(element.kind) && !element.text) {
            texts.ask(calls::text(step.ref), [&element](const Reply &reply) {
                element.text =
                    reply.isAnswered() ? std::optional(reply.as<QString>().value_or(QString())) : std::nullopt;
            });
        }
    }
    texts.run(asking);
    // In some toolkits labels have only a name.
    for (const auto &step : steps) {
        auto &element = tree[step.ref];
        if (element.text && element.text->isEmpty()) {
            texts.ask(calls::name(step.ref),
                      [&element](const Reply &reply) { element.text = reply.as<QString>().value_or(QString()); });
        }
    }
    texts.run(asking);
}

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
