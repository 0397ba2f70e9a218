// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/AccessibleTree.h"

#include <algorithm>

namespace quillory::test {

namespace {

using platform::AXUIElement;
namespace axAttribute = platform::axAttribute;

template <class T> std::optional<T> read(const AXUIElement &element, QLatin1StringView attribute) {
    const auto value = element.copyAttributeValue(attribute);
    const auto *found = value ? std::get_if<T>(&*value) : nullptr;
    return found != nullptr ? std::optional(*found) : std::nullopt;
}

} // namespace

bool AccessibleTree::lacks(const QString &text) {
    auto element = read<AXUIElement>(m_accessibility.createSystemWide(), axAttribute::focusedUIElement);
    while (element && read<QString>(*element, axAttribute::role) != platform::axRole::webArea) {
        element = read<AXUIElement>(*element, axAttribute::parent);
    }
    const auto nodes =
        element ? element->copySubtree({.maxDepth = 21, .maxNodes = 2500}) : std::vector<platform::AXSubtreeNode>();
    return !nodes.empty() &&
           std::ranges::none_of(nodes, [&](const auto &node) { return node.value && node.value->startsWith(text); });
}

} // namespace quillory::test
