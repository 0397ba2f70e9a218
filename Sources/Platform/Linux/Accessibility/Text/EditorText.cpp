// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Text/EditorText.h"

#include "Platform/Linux/Accessibility/Bus/Roles.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
// Far above what people type into; they bound the cost of a broken or hostile tree.
constexpr int maxDepth = 12;
constexpr std::size_t maxNodes = 2000;
constexpr int maxRounds = 2 * maxDepth + 4;

qsizetype standIns(const QString &text) {
    return text.count(QChar(QChar::ObjectReplacementCharacter));
}
} // namespace

EditorText::EditorText(ElementRef root, bool hasFinalBreak) : m_root(std::move(root)), m_hasFinalBreak(hasFinalBreak) {
    m_nodes[m_root].role = Role::entry;
    m_reachable = {m_root};
}

void EditorText::askAgain(Questions &questions) {
    for (auto &[ref, node] : m_nodes) {
        node.isFresh = false;
        node.hasFreshChildren = false;
    }
    for (const auto &ref : m_reachable) {
        auto &node = m_nodes[ref];
        if (node.knowledge == Knowledge::nothing) {
            askDescription(questions, ref);
        } else if (!isInlined(ref)) {
            askText(questions, ref);
            if (standIns(node.text) > 0) {
                askChildren(questions, ref);
            }
        }
    }
}

void EditorText::askText(Questions &questions, const ElementRef &ref) {
    m_nodes[ref].isFresh = true;
    if (m_nodes[ref].count > m_limit) {
        questions.ask(calls::characterCount(ref), [this, ref](const Reply &reply) {
            m_nodes[ref].count = reply.as<int>().value_or(0);
            m_nodes[ref].isFresh = reply.isAnswered();
        });
        return;
    }
    questions.ask(calls::text(ref), [this, ref](const Reply &reply) {
        auto &node = m_nodes[ref];
        const auto text = reply.as<QString>();
        node.isFresh = text.has_value();
        node.knowledge = text ? Knowledge::complete : Knowledge::nothing;
        node.text = cleanText(text.value_or(QString()));
        node.count = static_cast<int>(node.text.size());
    });
}

void EditorText::askDescription(Questions &questions, const ElementRef &ref) {
    if (ref != m_root) {
        questions.ask(calls::role(ref), [this, ref](const Reply &reply) {
            m_nodes[ref].role = reply.as<Role>().value_or(Role::unknown);
        });
    }
    askChildren(questions, ref);
    questions.ask(calls::characterCount(ref), [this, ref](const Reply &reply) {
        auto &node = m_nodes[ref];
        // An image or a rule in an editor has no text of its own; that of a password is not read.
        node.count = node.role == Role::passwordText ? 0 : std::max(reply.as<int>().value_or(0), 0);
        node.isFresh = reply.isAnswered();
        node.knowledge = node.count > 0 ? Knowledge::described : Knowledge::complete;
        node.text.clear();
    });
}

void EditorText::askChildren(Questions &questions, const ElementRef &ref) {
    questions.ask(calls::children(ref), [this, ref](const Reply &reply) {
        m_nodes[ref].hasFreshChildren = true;
        m_nodes[ref].children = reply.references(maxNodes).value_or(std::vector<ElementRef>());
    });
}

bool EditorText::isInlined(const ElementRef &ref) const {
    // A text leaf's words are written out in its parent's text, without a stand-in.
    const auto found = m_nodes.find(ref);
    return found != m_nodes.end() && found->second.knowledge != Knowledge::nothing && ref != m_root &&
           found->second.role == Role::staticText && found->second.children.empty();
}

bool EditorText::isOpen(const ElementRef &ref) const {
    const auto &node = m_nodes.at(ref);
    if (node.knowledge == Knowledge::nothing) {
        return true;
    }
    if (isInlined(ref)) {
        return false;
    }
    const bool lacksText = node.knowledge == Knowledge::described && node.count <= m_limit;
    return lacksText || (standIns(node.text) > 0 && !node.hasFreshChildren);
}

// Walks what is known, from the root down, and lists what is still to be asked about.
void EditorText::collect(const ElementRef &ref, int depth, std::vector<ElementRef> &open) {
    if (depth > maxDepth || m_seen.size() >= maxNodes) {
        m_tooMuch = true;
        return;
    }
    if (!m_seen.insert(ref).second) {
        return;
    }
    m_reachable.push_back(ref);
    const auto &node = m_nodes[ref];
    if (isOpen(ref)) {
        open.push_back(ref);
    } else if (!isInlined(ref) && standIns(node.text) > 0) {
        const auto children = node.children;
        for (const auto &child : children) {
            collect(child, depth + 1, open);
        }
    }
}

void EditorText::askOpen(Questions &questions, const ElementRef &ref) {
    switch (m_nodes[ref].knowledge) {
    case Knowledge::nothing:
        askDescription(questions, ref);
        break;
    case Knowledge::described:
        askText(questions, ref);
        break;
    case Knowledge::complete:
        askChildren(questions, ref);
        break;
    }
}

void EditorText::askRest(Questions &questions) {
    std::vector<ElementRef> open;
    m_reachable.clear();
    m_seen.clear();
    m_tooMuch = false;
    collect(m_root, 0, open);
    for (const auto &ref : open) {
        askOpen(questions, ref);
    }
}

EditorText::Outcome EditorText::finish(Connection &connection, Deadline deadline) {
    for (int round = 0; round < maxRounds; ++round) {
        Questions questions;
        askRest(questions);
        if (questions.isEmpty()) {
            break;
        }
        questions.run(connection, deadline);
    }
    std::erase_if(m_nodes, [this](const auto &entry) { return !m_seen.contains(entry.first); });
    Outcome outcome;
    qint64 counted = 0;
    for (const auto &[ref, node] : m_nodes) {
        counted += isInlined(ref) ? 0 : node.count;
    }
    const auto whole = counted <= m_limit && !m_tooMuch ? piece(m_root, 0) : std::nullopt;
    if (whole) {
        outcome.value = flatText(*whole);
        outcome.characters = outcome.value->size();
    } else if (m_nodes[m_root].isFresh) {
        outcome.characters = counted;
    }
    return outcome;
}

std::vector<ElementRef> EditorText::embeddedChildren(const Node &node) const {
    std::vector<ElementRef> embedded;
    for (const auto &child : node.children) {
        if (!isInlined(child)) {
            embedded.push_back(child);
        }
    }
    return std::ssize(node.children) == standIns(node.text) ? node.children : embedded;
}

std::optional<TextPiece> EditorText::piece(const ElementRef &ref, int depth) const {
    const auto found = m_nodes.find(ref);
    if (found == m_nodes.end() || depth > maxDepth || found->second.knowledge != Knowledge::complete) {
        // A leaf whose words stand in its parent's text is not asked for them.
        return isInlined(ref) ? std::optional<TextPiece>(TextPiece{}) : std::nullopt;
    }
    const auto &node = found->second;
    if (!node.isFresh) {
        return std::nullopt;
    }
    TextPiece result{node.text, depth == 0 ? m_hasFinalBreak : isBlock(node.role), {}};
    if (standIns(node.text) == 0) {
        return result;
    }
    for (const auto &child : embeddedChildren(node)) {
        auto embedded = piece(child, depth + 1);
        if (!embedded) {
            return std::nullopt;
        }
        result.embedded.push_back(std::move(*embedded));
    }
    return result;
}

} // namespace platform::desktop::atspi
