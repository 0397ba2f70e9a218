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

QStringList textsIn(const std::optional<AXUIElement> &root) {
    QStringList texts;
    if (root) {
        for (const auto &node : root->copySubtree({.maxDepth = 21, .maxNodes = 2500}, platform::AXFreshness::now())) {
            texts.append(node.value.value_or(QString()));
        }
    }
    return texts;
}

bool oneBegins(const QStringList &texts, const QString &start) {
    return std::ranges::any_of(texts, [&](const QString &text) { return text.startsWith(start); });
}

} // namespace

bool AccessibleTree::pageShows(const QStringList &wanted, const QString &unwanted) {
    auto element = read<AXUIElement>(m_accessibility.createSystemWide(), axAttribute::focusedUIElement);
    while (element && read<QString>(*element, axAttribute::role) != platform::axRole::webArea) {
        element = read<AXUIElement>(*element, axAttribute::parent);
    }
    const QStringList texts = textsIn(element);
    return !oneBegins(texts, unwanted) &&
           std::ranges::all_of(wanted, [&](const QString &text) { return oneBegins(texts, text); });
}

QString AccessibleTree::focusedName() {
    const auto element = read<AXUIElement>(m_accessibility.createSystemWide(), axAttribute::focusedUIElement);
    return element ? read<QString>(*element, axAttribute::title).value_or(QString()) : QString();
}

bool AccessibleTree::windowShows(qint32 pid, const QString &text) {
    const auto windows = read<std::vector<AXUIElement>>(m_accessibility.createApplication(pid), axAttribute::children);
    return windows &&
           std::ranges::any_of(*windows, [&](const auto &window) { return oneBegins(textsIn(window), text); });
}

} // namespace quillory::test
