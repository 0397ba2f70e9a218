// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Quillory/Field/FieldSnapshot.h"

#include <QString>

#include <optional>
#include <variant>

/// Questions about other applications' user interface, and the writing of text into their fields. Main thread only.
/// Each question may ask another process; whatever goes wrong answers "absent" or false, and only insertion logs.
namespace quillory::AXText {

/// The value of an attribute if it has the type T: QString, AXUIElement, QUrl, double or a list of AXUIElement.
template <class T>
[[nodiscard]] std::optional<T> attribute(const platform::AXUIElement &element, platform::AXAttribute name) {
    auto value = element.copyAttributeValue(name);
    if (!value || !std::holds_alternative<T>(*value)) {
        return std::nullopt;
    }
    return std::get<T>(std::move(*value));
}

/// The element through which the focus of the whole desktop is read.
[[nodiscard]] platform::AXUIElement systemWide();
/// What has the keyboard focus, in whatever application.
[[nodiscard]] std::optional<platform::AXUIElement> focusedElement();

/// Whether an element is a text field worth watching: one of the text roles, or anything whose value is a string that
/// can be written. A password field never is.
[[nodiscard]] bool isTextElement(const platform::AXUIElement &element);
/// Whether a role is that of a text field, whatever else is known of the element.
[[nodiscard]] bool isTextRole(const QString &role);
/// Whether a bundle identifier is that of a web browser.
[[nodiscard]] bool isBrowserIdentifier(const QString &identifier);
/// Whether an element belongs to a web browser, by its application's bundle identifier.
[[nodiscard]] bool isBrowserApp(const platform::AXUIElement &element);
/// Whether an element is part of a browser's own interface (address bar, toolbar search) rather than of a page.
[[nodiscard]] bool isBrowserUIField(const platform::AXUIElement &element);
/// Where an element is, in accessibility coordinates (points, origin at the top left of the primary screen).
[[nodiscard]] std::optional<platform::Rect> frame(const platform::AXUIElement &element);
/// The same place in screen coordinates (points, origin at the bottom left of the primary screen, y upwards).
[[nodiscard]] platform::Rect cocoaRect(const platform::Rect &axRect);
/// The title of the focused window of an application.
[[nodiscard]] std::optional<QString> focusedWindowTitle(qint32 pid);

/// The running application's bundle identifier, or absent.
[[nodiscard]] std::optional<QString> bundleIdentifier(const platform::AXUIElement &element);

/// Replaces the content of a field by a text: writes its value, or, in a browser and where the write does not stick,
/// pastes. Failures leave a log line. lastSeen: what the field last looked like, where the caller knows it better than
/// the element, which an application may have replaced.
void insert(const QString &text, const platform::AXUIElement &element,
            const std::optional<FieldSnapshot> &lastSeen = std::nullopt);
/// Writes the value of a field and puts the caret at its end; false when it was refused.
bool setValue(const platform::AXUIElement &element, const QString &text);
/// Pastes over the content of a field. Returns at once and ends about a second later.
void replaceViaPaste(const platform::AXUIElement &element, const QString &text,
                     const std::optional<FieldSnapshot> &lastSeen = std::nullopt);

} // namespace quillory::AXText
