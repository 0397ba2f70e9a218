// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/AtspiAccessibility.h"
#include "Platform/Linux/Qt/QtMainQueue.h"

#include <algorithm>

namespace quillory::test {

using platform::AXAttribute;
using platform::AXUIElement;

/// An attribute of this type; absent as well when there is no element.
template <class T> std::optional<T> read(const std::optional<AXUIElement> &element, AXAttribute attribute) {
    const auto value = element ? element->copyAttributeValue(attribute) : std::nullopt;
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

/// What applications say about their windows. A browser reports a change a little after it happened in the document.
class AccessibleTree {
  public:
    /// Whether the page around the focused field can be read, has for each of wanted a text that begins with it, and
    /// has none that begins with unwanted.
    [[nodiscard]] bool pageShows(const QStringList &wanted, const QString &unwanted) {
        auto element = read<AXUIElement>(m_accessibility.createSystemWide(), AXAttribute::focusedUIElement);
        while (element && read<QString>(element, AXAttribute::role) != platform::axRole::webArea) {
            element = read<AXUIElement>(element, AXAttribute::parent);
        }
        const QStringList texts = textsIn(element);
        return !oneBegins(texts, unwanted) &&
               std::ranges::all_of(wanted, [&](const QString &text) { return oneBegins(texts, text); });
    }
    /// The name of the element with the keyboard focus; empty when there is none or it has no name.
    [[nodiscard]] QString focusedName() {
        const auto element = read<AXUIElement>(m_accessibility.createSystemWide(), AXAttribute::focusedUIElement);
        return read<QString>(element, AXAttribute::title).value_or(QString());
    }
    /// Whether a window of the process shows a text that contains this one.
    [[nodiscard]] bool windowShows(qint32 pid, const QString &text) {
        const auto windows =
            read<std::vector<AXUIElement>>(m_accessibility.createApplication(pid), AXAttribute::children);
        return windows && std::ranges::any_of(
                              *windows, [&](const auto &window) { return textsIn(window).join(u'\n').contains(text); });
    }

  private:
    platform::desktop::QtMainQueue m_queue;
    platform::desktop::AtspiAccessibility m_accessibility{m_queue};
};

} // namespace quillory::test
