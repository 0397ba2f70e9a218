// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/AtspiAccessibility.h"
#include "Platform/Linux/Qt/QtMainQueue.h"

#include <algorithm>

namespace quillory::test {

using platform::AXAttribute;
using platform::AXUIElement;

template <class T> std::optional<T> read(const AXUIElement &element, AXAttribute attribute) {
    const auto value = element.copyAttributeValue(attribute);
    const auto *found = value ? std::get_if<T>(&*value) : nullptr;
    return found != nullptr ? std::optional(*found) : std::nullopt;
}

inline QStringList textsIn(const std::optional<AXUIElement> &root) {
    QStringList texts;
    if (root) {
        for (const auto &node : root->copySubtree({.maxDepth = 21, .maxNodes = 2500}, platform::AXFreshness::now())) {
            texts.append(node.value.value_or(QString()));
        }
    }
    return texts;
}

inline bool oneBegins(const QStringList &texts, const QString &start) {
    return std::ranges::any_of(texts, [&](const QString &text) { return text.startsWith(start); });
}

/// What applications tell of their windows at the moment, which for a page is a little later than its document changes.
class AccessibleTree {
  public:
    /// Whether the page around the focused field can be read and has, for each of the wanted, a text that begins so,
    /// but none that begins like the unwanted.
    [[nodiscard]] bool pageShows(const QStringList &wanted, const QString &unwanted) {
        auto element = read<AXUIElement>(m_accessibility.createSystemWide(), AXAttribute::focusedUIElement);
        while (element && read<QString>(*element, AXAttribute::role) != platform::axRole::webArea) {
            element = read<AXUIElement>(*element, AXAttribute::parent);
        }
        const QStringList texts = textsIn(element);
        return !oneBegins(texts, unwanted) &&
               std::ranges::all_of(wanted, [&](const QString &text) { return oneBegins(texts, text); });
    }
    /// The name of what has the keyboard focus; empty when nothing has, or it has none.
    [[nodiscard]] QString focusedName() {
        const auto element = read<AXUIElement>(m_accessibility.createSystemWide(), AXAttribute::focusedUIElement);
        return element ? read<QString>(*element, AXAttribute::title).value_or(QString()) : QString();
    }
    /// Whether a window of a process shows a text that begins so.
    [[nodiscard]] bool windowShows(qint32 pid, const QString &text) {
        const auto windows =
            read<std::vector<AXUIElement>>(m_accessibility.createApplication(pid), AXAttribute::children);
        return windows &&
               std::ranges::any_of(*windows, [&](const auto &window) { return oneBegins(textsIn(window), text); });
    }

  private:
    platform::desktop::QtMainQueue m_queue;
    platform::desktop::AtspiAccessibility m_accessibility{m_queue};
};

} // namespace quillory::test
