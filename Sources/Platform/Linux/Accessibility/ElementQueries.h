// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Linux/Accessibility/Reader/Session.h"

/// Questions about any element, asked on the reader's thread while there is an accessibility bus. Each gives "absent"
/// for whatever goes wrong.
namespace platform::desktop::atspi::queries {

/// What can be read of an element in one go.
[[nodiscard]] std::optional<ElementReading> read(Session &session, const Handle &element, TextWanted wanted);
/// The chain above an element.
[[nodiscard]] std::optional<Ancestry> ancestry(Session &session, const Handle &element);
[[nodiscard]] std::optional<std::vector<Handle>> children(Session &session, const Handle &element);
/// The address of a page.
[[nodiscard]] std::optional<QString> address(Session &session, const Handle &element);
/// The element of a process's application; absent when no application of that process is on the bus.
[[nodiscard]] std::optional<Handle> application(Session &session, qint32 pid);
/// The active window of an application, or the one that was active last.
[[nodiscard]] std::optional<Handle> focusedWindow(Session &session, qint32 pid);
/// In UTF-16 units of the field's own text.
[[nodiscard]] std::optional<AXRange> selectedRange(Session &session, const Handle &element);

/// False when the application refused or did not answer.
bool setText(Session &session, const Handle &element, const QString &text);
bool setSelectedRange(Session &session, const Handle &element, AXRange range);

} // namespace platform::desktop::atspi::queries
