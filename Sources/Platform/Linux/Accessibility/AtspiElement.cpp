// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/AtspiElement.h"

#include "Platform/Linux/Accessibility/AccessibilityCore.h"

namespace platform::desktop::atspi {

AtspiElement::AtspiElement(std::shared_ptr<AccessibilityCore> core, Handle handle)
    : m_core(std::move(core)), m_handle(std::move(handle)) {}

std::optional<AXValue> AtspiElement::copyAttributeValue(AXAttribute attribute) const {
    return m_core->attribute(m_handle, attribute);
}

bool AtspiElement::isAttributeSettable(AXAttribute attribute) const {
    const bool isWritable = attribute == AXAttribute::value || attribute == AXAttribute::selectedTextRange;
    return isWritable && m_core->isValueSettable(m_handle);
}

bool AtspiElement::setAttributeValue(AXAttribute attribute, const AXValue &value) const {
    return m_core->setAttribute(m_handle, attribute, value);
}

bool AtspiElement::isEqual(const AXElementBackend &other) const {
    const auto *element = dynamic_cast<const AtspiElement *>(&other);
    return element != nullptr && element->m_handle.ref == m_handle.ref;
}

std::vector<AXSubtreeNode> AtspiElement::copySubtree(AXSubtreeLimits limits, AXFreshness freshness) const {
    return m_core->subtree(m_handle, limits, freshness);
}

void AtspiElement::prepareSubtree(AXSubtreeLimits limits, AXFreshness freshness) const {
    m_core->prepareSubtree(m_handle, limits, freshness);
}

RootElement::RootElement(std::shared_ptr<AccessibilityCore> core, std::optional<qint32> pid)
    : m_core(std::move(core)), m_pid(pid) {}

std::optional<AXValue> RootElement::copyAttributeValue(AXAttribute attribute) const {
    if (m_pid) {
        return m_core->applicationAttribute(*m_pid, attribute);
    }
    if (attribute != AXAttribute::focusedUIElement) {
        return std::nullopt;
    }
    auto focused = m_core->focusedElement();
    return focused ? std::optional<AXValue>(std::move(*focused)) : std::nullopt;
}

bool RootElement::isEqual(const AXElementBackend &other) const {
    const auto *root = dynamic_cast<const RootElement *>(&other);
    return root != nullptr && root->m_pid == m_pid;
}

} // namespace platform::desktop::atspi
