// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Quillory/Field/FieldSnapshot.h"

#include <QString>

#include <optional>

namespace quillory {

/// A text that is to replace the content of a field by way of the pasteboard.
struct PasteRequest {
    QString text;
    platform::AXUIElement target;
    /// What the field last looked like, so that a copy which the application made of it is still recognised.
    std::optional<FieldSnapshot> lastSeen;
};

/// Brings the field's application to the front, puts the text on the pasteboard, selects all and pastes with
/// synthesised keys, and then gives the pasteboard its content back. Returns at once; about a second passes. Nothing
/// is typed when the field is not seen to have the keyboard focus, when a paste would give another text, or when what
/// the pasteboard holds could not be given back; what the user copies meanwhile is left alone. A request that comes
/// before the last one has ended waits for it. Main thread only.
void paste(PasteRequest request);

/// Whether a text is on its way into a field.
[[nodiscard]] bool isPasting();

/// Gives the pasteboard its content back at once, for the program's end in the midst of a paste. Main thread only.
void abandonPastes();

} // namespace quillory
