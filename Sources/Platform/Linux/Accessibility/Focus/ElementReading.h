// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Message.h"
#include "Platform/Linux/Accessibility/Bus/Roles.h"

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
    std::optional<PixelRect> frame = {};
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

} // namespace platform::desktop::atspi
