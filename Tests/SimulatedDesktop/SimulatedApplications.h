// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Workspace.h"

#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace quillory::test {

class SimulatedNode;
using Node = std::shared_ptr<SimulatedNode>;

/// One element of a simulated application's user interface. Handles on it compare equal; once it is gone they answer
/// nothing.
class SimulatedNode : public std::enable_shared_from_this<SimulatedNode> {
  public:
    SimulatedNode(qint32 processIdentifier, QLatin1StringView nodeRole) : pid(processIdentifier) {
        set(platform::AXAttribute::role, nodeRole);
    }

    const qint32 pid;
    bool gone = false;
    /// What the application makes of a value that is written or pasted; absent: it refuses. Fields that know no writes
    /// through accessibility still take pastes.
    std::function<std::optional<QString>(const QString &)> onWrite = [](const QString &text) { return text; };
    bool settable = false;
    std::optional<platform::AXRange> caret;
    /// How often somebody said that what lies below will be read soon.
    int announced = 0;

    [[nodiscard]] platform::AXUIElement element();
    Node add(QLatin1StringView role) {
        auto child = std::make_shared<SimulatedNode>(pid, role);
        child->m_parent = weak_from_this();
        m_children.push_back(child);
        return child;
    }
    Node add(QLatin1StringView role, const platform::Rect &frame) {
        auto child = add(role);
        child->setFrame(frame);
        return child;
    }
    Node addText(const QString &text, const platform::Rect &frame) {
        auto child = add(platform::axRole::staticText, frame);
        child->setValue(text);
        return child;
    }
    void removeChildren() { m_children.clear(); }
    SimulatedNode &set(platform::AXAttribute attribute, const platform::AXValue &value) {
        m_attributes.insert_or_assign(attribute, value);
        return *this;
    }
    SimulatedNode &setFrame(const platform::Rect &frame) {
        return set(platform::AXAttribute::position, frame.origin()).set(platform::AXAttribute::size, frame.size());
    }
    SimulatedNode &setValue(const QString &value) { return set(platform::AXAttribute::value, value); }
    [[nodiscard]] QString value() const { return attribute<QString>(platform::AXAttribute::value).value_or(QString()); }
    bool write(const QString &text) {
        const auto outcome = onWrite(text);
        if (outcome) {
            setValue(*outcome);
        }
        return outcome.has_value();
    }

  private:
    friend class SimulatedElement;
    template <class T> [[nodiscard]] std::optional<T> attribute(platform::AXAttribute name) const {
        const auto found = m_attributes.find(name);
        return found == m_attributes.end() ? std::nullopt : std::optional(std::get<T>(found->second));
    }
    std::map<platform::AXAttribute, platform::AXValue> m_attributes;
    std::vector<Node> m_children;
    std::weak_ptr<SimulatedNode> m_parent;
};

/// A handle on a node, as the program sees it.
class SimulatedElement final : public platform::AXElementBackend {
  public:
    explicit SimulatedElement(Node node) : m_node(std::move(node)) {}

    [[nodiscard]] std::optional<platform::AXValue> copyAttributeValue(platform::AXAttribute attribute) const override {
        if (m_node->gone) {
            return std::nullopt;
        }
        if (attribute == platform::AXAttribute::parent) {
            const auto parent = m_node->m_parent.lock();
            return parent ? std::optional<platform::AXValue>(parent->element()) : std::nullopt;
        }
        const auto found = m_node->m_attributes.find(attribute);
        return found == m_node->m_attributes.end() ? std::nullopt : std::optional(found->second);
    }
    [[nodiscard]] bool isAttributeSettable(platform::AXAttribute attribute) const override {
        return attribute == platform::AXAttribute::value && m_node->settable && !m_node->gone;
    }
    bool setAttributeValue(platform::AXAttribute attribute, const platform::AXValue &value) const override {
        if (m_node->gone || !m_node->settable) {
            return false;
        }
        if (attribute == platform::AXAttribute::selectedTextRange) {
            m_node->caret = std::get<platform::AXRange>(value);
            return true;
        }
        return m_node->write(std::get<QString>(value));
    }
    [[nodiscard]] qint32 pid() const override { return m_node->pid; }
    [[nodiscard]] bool isEqual(const AXElementBackend &other) const override {
        const auto *same = dynamic_cast<const SimulatedElement *>(&other);
        return same != nullptr && same->m_node == m_node;
    }
    [[nodiscard]] std::vector<platform::AXSubtreeNode> copySubtree(platform::AXSubtreeLimits limits,
                                                                   platform::AXFreshness) const override {
        std::vector<platform::AXSubtreeNode> nodes;
        if (!m_node->gone) {
            walk(*m_node, 0, limits, nodes);
        }
        return nodes;
    }
    void prepareSubtree(platform::AXSubtreeLimits, platform::AXFreshness) const override { ++m_node->announced; }

  private:
    static void walk(const SimulatedNode &node, int depth, const platform::AXSubtreeLimits &limits,
                     std::vector<platform::AXSubtreeNode> &nodes) {
        if (depth > limits.maxDepth || std::cmp_greater_equal(nodes.size(), limits.maxNodes)) {
            return;
        }
        platform::AXSubtreeNode copy{depth, *node.attribute<QString>(platform::AXAttribute::role), {}, {}};
        const auto position = node.attribute<platform::Point>(platform::AXAttribute::position);
        const auto size = node.attribute<platform::Size>(platform::AXAttribute::size);
        if (copy.role == platform::axRole::staticText) {
            copy.value = node.attribute<QString>(platform::AXAttribute::value);
            if (position && size) {
                copy.frame = {position->x, position->y, size->width, size->height};
            }
        }
        nodes.push_back(std::move(copy));
        for (const auto &child : node.m_children) {
            walk(*child, depth + 1, limits, nodes);
        }
    }

    Node m_node;
};

inline platform::AXUIElement SimulatedNode::element() {
    return platform::AXUIElement(std::make_shared<SimulatedElement>(shared_from_this()));
}

class SimulatedApplications final : public platform::Accessibility, public platform::Workspace {
  public:
    bool trusted = true;
    Node focused;
    /// Where an application puts the focus when it comes to the front.
    std::map<qint32, Node> focusOnActivation;
    std::vector<qint32> activated;
    int prompts = 0;
    int settingsShown = 0;

    /// A running application with one window, which is returned.
    Node launch(const platform::RunningApplication &application, const QString &windowTitle) {
        auto root = std::make_shared<SimulatedNode>(application.pid, QLatin1StringView("AXApplication"));
        auto window = root->add(platform::axRole::window);
        window->set(platform::AXAttribute::title, windowTitle);
        root->set(platform::AXAttribute::focusedWindow, window->element());
        m_running.insert_or_assign(application.pid, Running{application, root});
        return window;
    }

    [[nodiscard]] bool isProcessTrusted() override { return trusted; }
    bool isProcessTrustedWithPrompt() override {
        ++prompts;
        return trusted;
    }
    void showSettings() override { ++settingsShown; }
    [[nodiscard]] platform::AXUIElement createSystemWide() override {
        auto node = std::make_shared<SimulatedNode>(0, QLatin1StringView("AXSystemWide"));
        if (focused) {
            node->set(platform::AXAttribute::focusedUIElement, focused->element());
        }
        return node->element();
    }
    [[nodiscard]] platform::AXUIElement createApplication(qint32 pid) override {
        const auto found = m_running.find(pid);
        if (found != m_running.end()) {
            return found->second.root->element();
        }
        auto nobody = std::make_shared<SimulatedNode>(pid, QLatin1StringView());
        nobody->gone = true;
        return nobody->element();
    }
    [[nodiscard]] std::optional<platform::RunningApplication> runningApplication(qint32 pid) override {
        const auto found = m_running.find(pid);
        return found == m_running.end() ? std::nullopt : std::optional(found->second.description);
    }
    void activate(qint32 pid) override {
        activated.push_back(pid);
        if (const auto found = focusOnActivation.find(pid); found != focusOnActivation.end()) {
            focused = found->second;
        }
    }

  private:
    struct Running {
        platform::RunningApplication description;
        Node root;
    };
    std::map<qint32, Running> m_running;
};

} // namespace quillory::test
