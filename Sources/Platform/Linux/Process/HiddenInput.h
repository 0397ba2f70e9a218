// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace platform::desktop {

/// Reads a line from the terminal on standard input without showing it, and what was pasted together with it: a text
/// with line breaks in it comes as a whole. Empty when the input ended.
[[nodiscard]] QString readHidden();

} // namespace platform::desktop
