// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Focus/ElementReading.h"
#include "Platform/Linux/Accessibility/Text/EditorText.h"

namespace platform::desktop::atspi {

/// Reads one element again and again. What hardly ever changes is remembered for a second, so reading a known element
/// takes one round trip.
class FieldReader {
  public:
    explicit FieldReader(Handle element) : m_element(std::move(element)) {}

    [[nodiscard]] const Handle &element() const { return m_element; }
    /// window: whose states are read as well, unless it is a null reference.
    ElementReading read(Connection &connection, TextWanted wanted, const ElementRef &window, Deadline deadline);
    /// The longest text that is copied, in characters, when the value is wanted.
    void setTextLimit(int characters) { m_textLimit = characters; }

  private:
    void askRole(Questions &questions);
    void askFacts(Questions &questions);
    void readText(Connection &connection, ElementReading &reading, Questions &questions, Deadline deadline);
    [[nodiscard]] bool hasValue() const;
    [[nodiscard]] int textLimit(TextWanted wanted) const;
    [[nodiscard]] bool hasInterface(const char *name) const;
    [[nodiscard]] bool hasFinalBreak() const;
    [[nodiscard]] std::optional<QString> placeholder() const;

    Handle m_element;
    int m_textLimit = 20'000;
    Clock::time_point m_factsAt;
    bool m_hasFacts = false;
    Kind m_kind;
    std::vector<std::string> m_interfaces;
    std::optional<QString> m_name;
    std::optional<EditorText> m_text;
};

} // namespace platform::desktop::atspi
