// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Screens.h"
#include "Platform/Workspace.h"
#include "Quillory/Field/FieldSnapshot.h"

#include <QString>

#include <optional>
#include <variant>
#include <vector>

namespace quillory {

class PasteQueue;

/// Answers questions about other applications' user interface, and writes text into their fields. Main thread only.
/// A question may go to another process; if anything goes wrong the answer is "absent" or false. Only insertion logs.
class AXText {
  public:
    /// Both outlive this.
    AXText(platform::Accessibility &accessibility, platform::Workspace &workspace)
        : m_accessibility(accessibility), m_workspace(workspace) {}

    /// The value of an attribute if it has the type T: QString, AXUIElement, QUrl, double or a list of AXUIElement.
    template <class T>
    [[nodiscard]] static std::optional<T> attribute(const platform::AXUIElement &element, platform::AXAttribute name) {
        auto value = element.copyAttributeValue(name);
        if (!value || !std::holds_alternative<T>(*value)) {
            return std::nullopt;
        }
        return std::get<T>(std::move(*value));
    }

    /// What has the keyboard focus, in whatever application.
    [[nodiscard]] std::optional<platform::AXUIElement> focusedElement() const;

    /// Whether an element is a text field worth watching: one of the text roles, or anything whose value is a string
    /// that can be written. A password field never is.
    [[nodiscard]] static bool isTextElement(const platform::AXUIElement &element);
    /// Whether a role is that of a text field. The role alone decides.
    [[nodiscard]] static bool isTextRole(const QString &role);
    /// Whether an element belongs to a web browser, by its application's bundle identifier.
    [[nodiscard]] bool isBrowserApp(const platform::AXUIElement &element) const;
    /// Whether an element is part of a browser's own interface (address bar, toolbar search) rather than of a page.
    [[nodiscard]] bool isBrowserUIField(const platform::AXUIElement &element) const;
    /// Where an element is, in accessibility coordinates (points, origin at the top left of the primary screen).
    [[nodiscard]] static std::optional<platform::Rect> frame(const platform::AXUIElement &element);
    /// The same frame in screen coordinates (points, origin at the bottom left of the primary screen, y upwards).
    /// screens: the primary one first.
    [[nodiscard]] static platform::Rect cocoaRect(const platform::Rect &axRect,
                                                  const std::vector<platform::Screen> &screens);
    /// The title of the focused window of an application.
    [[nodiscard]] std::optional<QString> focusedWindowTitle(qint32 pid) const;
    /// The running application that shows an element.
    [[nodiscard]] std::optional<platform::RunningApplication> application(const platform::AXUIElement &element) const;
    /// Its bundle identifier.
    [[nodiscard]] std::optional<QString> bundleIdentifier(const platform::AXUIElement &element) const;

    /// Replaces the content of a field by a text: writes its value, or, in a browser and where the write does not
    /// stick, pastes. Failures are logged. lastSeen: what the field last looked like, if the caller knows better than
    /// the element does, which the application may have replaced.
    void insert(const QString &text, const platform::AXUIElement &element, PasteQueue &pastes,
                const std::optional<FieldSnapshot> &lastSeen = std::nullopt) const;
    /// Writes the value of a field and puts the caret at its end. False if the application refused.
    static bool setValue(const platform::AXUIElement &element, const QString &text);

  private:
    platform::Accessibility &m_accessibility;
    platform::Workspace &m_workspace;
};

} // namespace quillory
