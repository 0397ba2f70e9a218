// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Linux/Accessibility/Bus/Protocol.h"

namespace platform::desktop::atspi {

class AccessibilityCore;

/// An element of an application on the accessibility bus.
class AtspiElement final : public AXElementBackend {
  public:
    AtspiElement(std::shared_ptr<AccessibilityCore> core, Handle handle);
    [[nodiscard]] std::optional<AXValue> copyAttributeValue(AXAttribute attribute) const override;
    [[nodiscard]] bool isAttributeSettable(AXAttribute attribute) const override;
    bool setAttributeValue(AXAttribute attribute, const AXValue &value) const override;
    [[nodiscard]] qint32 pid() const override { return m_handle.pid; }
    [[nodiscard]] bool isEqual(const AXElementBackend &other) const override;
    [[nodiscard]] std::vector<AXSubtreeNode> copySubtree(AXSubtreeLimits limits, AXFreshness freshness) const override;
    void prepareSubtree(AXSubtreeLimits limits, AXFreshness freshness) const override;

  private:
    std::shared_ptr<AccessibilityCore> m_core;
    Handle m_handle;
};

/// The desktop as a whole (without a process) or a whole application.
class RootElement final : public AXElementBackend {
  public:
    explicit RootElement(std::shared_ptr<AccessibilityCore> core, std::optional<qint32> pid = std::nullopt);
    [[nodiscard]] std::optional<AXValue> copyAttributeValue(AXAttribute attribute) const override;
    [[nodiscard]] bool isAttributeSettable(AXAttribute) const override { return false; }
    bool setAttributeValue(AXAttribute, const AXValue &) const override { return false; }
    [[nodiscard]] qint32 pid() const override { return m_pid.value_or(0); }
    [[nodiscard]] bool isEqual(const AXElementBackend &other) const override;
    /// Absent: a read starts at a window or a page.
    [[nodiscard]] std::vector<AXSubtreeNode> copySubtree(AXSubtreeLimits, AXFreshness) const override { return {}; }
    void prepareSubtree(AXSubtreeLimits, AXFreshness) const override {}

  private:
    std::shared_ptr<AccessibilityCore> m_core;
    std::optional<qint32> m_pid;
};

} // namespace platform::desktop::atspi
