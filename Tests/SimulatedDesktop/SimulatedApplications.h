// SPDX-FileCopyrightText: 2026 The Quillory developers
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
        set(platform::axAttribute::role, nodeRole);
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
    Node add(QLatin1StringView role);
    /// Adds a child with a frame.
    Node add(QLatin1StringView role, const platform::Rect &frame);
    /// Adds a line of text as a chat program shows it.
    Node addText(const QString &text, const platform::Rect &frame);
    void removeChildren() { m_children.clear(); }
    SimulatedNode &set(QLatin1StringView attribute, const platform::AXValue &value);
    SimulatedNode &setFrame(const platform::Rect &frame);
    SimulatedNode &setValue(const QString &value) { return set(platform::axAttribute::value, value); }
    [[nodiscard]] QString value() const { return attribute<QString>(platform::axAttribute::value).value_or(QString()); }
    /// Replaces the value as an application does it that is told to.
    bool write(const QString &text);

  private:
    friend class SimulatedElement;
    template <class T> [[nodiscard]] std::optional<T> attribute(QLatin1StringView name) const {
        const auto found = m_attributes.find(name);
        return found == m_attributes.end() ? std::nullopt : std::optional(std::get<T>(found->second));
    }
    std::map<QString, platform::AXValue> m_attributes;
    std::vector<Node> m_children;
    std::weak_ptr<SimulatedNode> m_parent;
};

/// The applications of a simulated desktop, their windows and the keyboard focus.
class SimulatedApplications final : public platform::Accessibility, public platform::Workspace {
  public:
    bool trusted = true;
    Node focused;
    /// Where an application puts the focus when it comes to the front.
    std::map<qint32, Node> focusOnActivation;
    std::vector<qint32> activated;
    int prompts = 0;
    std::vector<QUrl> opened;

    /// A running application with one window, which is returned.
    Node launch(const platform::RunningApplication &application, const QString &windowTitle);

    [[nodiscard]] bool isProcessTrusted() override { return trusted; }
    bool isProcessTrustedWithPrompt() override;
    [[nodiscard]] platform::AXUIElement createSystemWide() override;
    [[nodiscard]] platform::AXUIElement createApplication(qint32 pid) override;
    [[nodiscard]] std::optional<platform::RunningApplication> runningApplication(qint32 pid) override;
    void activate(qint32 pid) override;
    bool open(const QUrl &url) override;

  private:
    struct Running {
        platform::RunningApplication description;
        Node root;
    };
    std::map<qint32, Running> m_running;
};

} // namespace quillory::test
