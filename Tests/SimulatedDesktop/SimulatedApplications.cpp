// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "SimulatedDesktop/SimulatedApplications.h"

namespace quillory::test {

using platform::AXUIElement;
using platform::AXValue;
namespace axAttribute = platform::axAttribute;
namespace axRole = platform::axRole;

class SimulatedElement final : public platform::AXElementBackend {
  public:
    explicit SimulatedElement(Node node) : m_node(std::move(node)) {}

    [[nodiscard]] std::optional<AXValue> copyAttributeValue(QLatin1StringView attribute) const override {
        if (m_node->gone) {
            return std::nullopt;
        }
        if (attribute == axAttribute::parent) {
            const auto parent = m_node->m_parent.lock();
            return parent ? std::optional<AXValue>(parent->element()) : std::nullopt;
        }
        if (attribute == axAttribute::children) {
            std::vector<AXUIElement> children;
            for (const auto &child : m_node->m_children) {
                children.push_back(child->element());
            }
            return children;
        }
        const auto found = m_node->m_attributes.find(attribute);
        return found == m_node->m_attributes.end() ? std::nullopt : std::optional(found->second);
    }
    [[nodiscard]] bool isAttributeSettable(QLatin1StringView attribute) const override {
        return attribute == axAttribute::value && m_node->settable && !m_node->gone;
    }
    bool setAttributeValue(QLatin1StringView attribute, const AXValue &value) const override {
        if (m_node->gone || !m_node->settable) {
            return false;
        }
        if (attribute == axAttribute::selectedTextRange) {
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
        platform::AXSubtreeNode copy{depth, *node.attribute<QString>(axAttribute::role), {}, {}};
        const auto position = node.attribute<platform::Point>(axAttribute::position);
        const auto size = node.attribute<platform::Size>(axAttribute::size);
        if (copy.role == axRole::staticText) {
            copy.value = node.attribute<QString>(axAttribute::value);
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

AXUIElement SimulatedNode::element() {
    return AXUIElement(std::make_shared<SimulatedElement>(shared_from_this()));
}

Node SimulatedNode::add(QLatin1StringView role) {
    auto child = std::make_shared<SimulatedNode>(pid, role);
    child->m_parent = weak_from_this();
    m_children.push_back(child);
    return child;
}

Node SimulatedNode::add(QLatin1StringView role, const platform::Rect &frame) {
    auto child = add(role);
    child->setFrame(frame);
    return child;
}

Node SimulatedNode::addText(const QString &text, const platform::Rect &frame) {
    auto child = add(axRole::staticText, frame);
    child->setValue(text);
    return child;
}

SimulatedNode &SimulatedNode::set(QLatin1StringView attribute, const AXValue &value) {
    m_attributes.insert_or_assign(QString(attribute), value);
    return *this;
}

SimulatedNode &SimulatedNode::setFrame(const platform::Rect &frame) {
    return set(axAttribute::position, frame.origin()).set(axAttribute::size, frame.size());
}

bool SimulatedNode::write(const QString &text) {
    const auto outcome = onWrite(text);
    if (outcome) {
        setValue(*outcome);
    }
    return outcome.has_value();
}

Node SimulatedApplications::launch(const platform::RunningApplication &application, const QString &windowTitle) {
    auto root = std::make_shared<SimulatedNode>(application.pid, QLatin1StringView("AXApplication"));
    auto window = root->add(axRole::window);
    window->set(axAttribute::title, windowTitle);
    root->set(axAttribute::focusedWindow, window->element());
    m_running.insert_or_assign(application.pid, Running{application, root});
    return window;
}

bool SimulatedApplications::isProcessTrustedWithPrompt() {
    ++prompts;
    return trusted;
}

AXUIElement SimulatedApplications::createSystemWide() {
    auto node = std::make_shared<SimulatedNode>(0, QLatin1StringView("AXSystemWide"));
    if (focused) {
        node->set(axAttribute::focusedUIElement, focused->element());
    }
    return node->element();
}

AXUIElement SimulatedApplications::createApplication(qint32 pid) {
    const auto found = m_running.find(pid);
    if (found != m_running.end()) {
        return found->second.root->element();
    }
    auto nobody = std::make_shared<SimulatedNode>(pid, QLatin1StringView());
    nobody->gone = true;
    return nobody->element();
}

std::optional<platform::RunningApplication> SimulatedApplications::runningApplication(qint32 pid) {
    const auto found = m_running.find(pid);
    return found == m_running.end() ? std::nullopt : std::optional(found->second.description);
}

void SimulatedApplications::activate(qint32 pid) {
    activated.push_back(pid);
    if (const auto found = focusOnActivation.find(pid); found != focusOnActivation.end()) {
        focused = found->second;
    }
}

bool SimulatedApplications::open(const QUrl &url) {
    opened.push_back(url);
    return true;
}

} // namespace quillory::test
