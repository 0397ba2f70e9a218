// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Protocol.h"

#include <QString>

namespace platform::desktop::atspi {

/// What an element says of its kind. The states and the attributes matter for some roles only.
struct Kind {
    Role role = Role::unknown;
    States states;
    Attributes attributes;
    bool hasChildren = false;
};

/// The one translation of the bus's roles into the program's role names.
[[nodiscard]] QString axRoleName(const Kind &kind);

/// Passwords are not read, nor the leaves that stand for a password's characters.
[[nodiscard]] inline bool isSecret(const Kind &kind) {
    return kind.role == Role::passwordText;
}

/// Whether an element's text stands on lines of its own in its parent's text.
[[nodiscard]] bool isBlock(Role role);

} // namespace platform::desktop::atspi
