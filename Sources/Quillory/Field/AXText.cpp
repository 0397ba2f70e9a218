// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/AXText.h"

#include "Quillory/Field/KnownPrograms.h"
#include "Quillory/Field/PasteQueue.h"
#include "Quillory/Records/FileLog.h"
#include "Quillory/Text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quillory {

using platform::AXAttribute;
using platform::AXUIElement;
namespace axRole = platform::axRole;

namespace {

constexpr std::array textRoles{axRole::textField, axRole::textArea, axRole::comboBox, axRole::searchField};

// Pages nest deeply, but no field was ever seen this far below its page's root. Each step costs two questions.
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

// Editors tidy up what they are given, so the write counts as taken if the start of the text is there.
constexpr qsizetype verifiedPrefix = 24;

bool logIfTaken(const QString &text, const AXUIElement &element) {
    const QString readBack = AXText::attribute<QString>(element, AXAttribute::value).value_or(QString());
    const bool taken = text::hasPrefix(readBack, text::prefix(text, verifiedPrefix));
    FileLog::log(taken ? QStringLiteral("inserted via AX set")
                       : QStringLiteral("AX set did not stick (read back %1 chars), pasting instead")
                             .arg(text::characterCount(readBack)));
    return taken;
}

} // namespace

std::optional<AXUIElement> AXText::focusedElement() const {
    return attribute<AXUIElement>(m_accessibility.createSystemWide(), AXAttribute::focusedUIElement);
}

bool AXText::isTextRole(const QString &role) {
    return std::any_of(textRoles.begin(), textRoles.end(), [&](QLatin1StringView known) { return role == known; });
}

bool AXText::isTextElement(const AXUIElement &element) {
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

std::optional<platform::RunningApplication> AXText::application(const AXUIElement &element) const {
    return m_workspace.runningApplication(element.pid());
}

std::optional<QString> AXText::bundleIdentifier(const AXUIElement &element) const {
    const auto shownBy = application(element);
    return shownBy ? shownBy->bundleIdentifier : std::nullopt;
}

bool AXText::isBrowserApp(const AXUIElement &element) const {
    const auto identifier = bundleIdentifier(element);
    return identifier && isBrowser(*identifier);
}

bool AXText::isBrowserUIField(const AXUIElement &element) const {
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

std::optional<platform::Rect> AXText::frame(const AXUIElement &element) {
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

platform::Rect AXText::cocoaRect(const platform::Rect &axRect, const std::vector<platform::Screen> &screens) {
    const double top = screens.empty() ? 0 : screens.front().frame.maxY();
    const double height = std::abs(axRect.height);
    return {axRect.x, top - axRect.y - height, std::abs(axRect.width), height};
}

std::optional<QString> AXText::focusedWindowTitle(qint32 pid) const {
    const auto window = attribute<AXUIElement>(m_accessibility.createApplication(pid), AXAttribute::focusedWindow);
    return window ? attribute<QString>(*window, AXAttribute::title) : std::nullopt;
}

bool AXText::setValue(const AXUIElement &element, const QString &text) {
    if (!element.isAttributeSettable(AXAttribute::value) || !element.setAttributeValue(AXAttribute::value, text)) {
        return false;
    }
    element.setAttributeValue(AXAttribute::selectedTextRange, platform::AXRange{text.size(), 0});
    return true;
}

void AXText::insert(const QString &text, const AXUIElement &element, PasteQueue &pastes,
                    const std::optional<FieldSnapshot> &lastSeen) const {
    if (isBrowserApp(element)) {
        FileLog::log(QStringLiteral("web field, inserting via paste"));
    } else if (!setValue(element, text)) {
        FileLog::log(QStringLiteral("AX write rejected, falling back to paste"));
    } else if (logIfTaken(text, element)) {
        return;
    }
    pastes.paste({text, element, lastSeen ? lastSeen : snapshot(element)});
}

} // namespace quillory
