// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/AXText.h"

#include "Platform/Platform.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quillory::AXText {

using platform::AXAttribute;
using platform::AXUIElement;
namespace axRole = platform::axRole;

namespace {

constexpr std::array textRoles{axRole::textField, axRole::textArea, axRole::comboBox, axRole::searchField};

constexpr std::array browserPrefixes{
    QLatin1StringView("com.apple.Safari"),
    QLatin1StringView("com.google.Chrome"),
    QLatin1StringView("org.chromium"),
    QLatin1StringView("com.microsoft.edgemac"),
    QLatin1StringView("com.brave.Browser"),
    QLatin1StringView("company.thebrowser.Browser"),
    QLatin1StringView("org.mozilla.firefox"),
    QLatin1StringView("com.vivaldi.Vivaldi"),
    QLatin1StringView("com.operasoftware.Opera"),
};

// Pages nest deeply, but a field so far below its page's root was never seen; each step costs two questions.
constexpr int ancestorLimit = 30;

bool holdsGeometry(const platform::AXValue &value) {
    return std::holds_alternative<platform::Point>(value) || std::holds_alternative<platform::Size>(value) ||
           std::holds_alternative<platform::AXRange>(value);
}

// A geometric value of the wrong kind counts as zero, not as absent.
template <class T> std::optional<T> geometry(const AXUIElement &element, AXAttribute name) {
    const auto value = element.copyAttributeValue(name);
    if (!value || !holdsGeometry(*value)) {
        return std::nullopt;
    }
    const auto *found = std::get_if<T>(&*value);
    return found != nullptr ? *found : T{};
}

} // namespace

AXUIElement systemWide() {
    // The desktop layer keeps the one element behind this; a handle is cheap.
    return platform::current().accessibility.createSystemWide();
}

std::optional<AXUIElement> focusedElement() {
    return attribute<AXUIElement>(systemWide(), AXAttribute::focusedUIElement);
}

bool isTextRole(const QString &role) {
    return std::any_of(textRoles.begin(), textRoles.end(), [&](QLatin1StringView known) { return role == known; });
}

bool isTextElement(const AXUIElement &element) {
    const auto role = attribute<QString>(element, AXAttribute::role).value_or(QString());
    if (role == axRole::secureTextField) {
        return false;
    }
    if (isTextRole(role)) {
        return true;
    }
    return element.isAttributeSettable(AXAttribute::value) &&
           attribute<QString>(element, AXAttribute::value).has_value();
}

std::optional<QString> bundleIdentifier(const AXUIElement &element) {
    const auto application = platform::current().workspace.runningApplication(element.pid());
    return application ? application->bundleIdentifier : std::nullopt;
}

bool isBrowserIdentifier(const QString &identifier) {
    return std::any_of(browserPrefixes.begin(), browserPrefixes.end(),
                       [&](QLatin1StringView prefix) { return identifier.startsWith(prefix); });
}

bool isBrowserApp(const AXUIElement &element) {
    const auto identifier = bundleIdentifier(element);
    return identifier && isBrowserIdentifier(*identifier);
}

bool isBrowserUIField(const AXUIElement &element) {
    if (!isBrowserApp(element)) {
        return false;
    }
    AXUIElement current = element;
    for (int step = 0; step < ancestorLimit; ++step) {
        const auto parent = attribute<AXUIElement>(current, AXAttribute::parent);
        if (!parent) {
            return true;
        }
        if (attribute<QString>(*parent, AXAttribute::role) == axRole::webArea) {
            return false;
        }
        current = *parent;
    }
    return true;
}

std::optional<platform::Rect> frame(const AXUIElement &element) {
    const auto position = geometry<platform::Point>(element, AXAttribute::position);
    if (!position) {
        return std::nullopt;
    }
    const auto size = geometry<platform::Size>(element, AXAttribute::size);
    if (!size) {
        return std::nullopt;
    }
    return platform::Rect{position->x, position->y, size->width, size->height};
}

platform::Rect cocoaRect(const platform::Rect &axRect) {
    const auto screens = platform::current().screens.screens();
    const double top = screens.empty() ? 0 : screens.front().frame.maxY();
    const double height = std::abs(axRect.height);
    return {axRect.x, top - axRect.y - height, std::abs(axRect.width), height};
}

std::optional<QString> focusedWindowTitle(qint32 pid) {
    const auto application = platform::current().accessibility.createApplication(pid);
    const auto window = attribute<AXUIElement>(application, AXAttribute::focusedWindow);
    return window ? attribute<QString>(*window, AXAttribute::title) : std::nullopt;
}

} // namespace quillory::AXText
