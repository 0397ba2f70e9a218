// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Roles.h"
#include "Platform/Linux/Accessibility/Text/EditorText.h"

namespace platform::desktop::atspi {

/// How much of a field's text a read brings along.
enum class TextWanted { nothing, count, value };

/// What was read of one element at one moment, whole: it travels between threads as it is, and every question of the
/// same moment is answered from it. What is absent could not be read, or was not wanted.
struct ElementReading {
    Handle element = {};
    Clock::time_point takenAt = {};
    /// Whether the application answered at all; if not, all else is absent.
    bool isAnswered = false;
    /// The element is no more.
    bool isGone = false;
    TextWanted wanted = TextWanted::nothing;
    Kind kind = {};
    /// The states of the element's window.
    std::optional<States> windowStates = {};
    std::optional<QString> value = {};
    /// The length of the text in UTF-16 units where the value was read, else about that.
    std::optional<qint64> characters = {};
    /// In pixels of the screen.
    std::optional<Rect> frame = {};
    std::optional<QString> placeholder = {};
    std::optional<QString> name = {};
    /// The address of a page.
    std::optional<QString> url = {};
    bool isValueSettable = false;

    /// Whether it has all there is of what is asked for. A long text is counted, but not copied.
    [[nodiscard]] bool covers(TextWanted text) const {
        return wanted >= text && (text != TextWanted::value || value || !characters);
    }
};

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
