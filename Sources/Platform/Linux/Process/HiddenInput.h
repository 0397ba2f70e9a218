// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace platform::desktop {

/// Reads a line from the terminal on standard input without showing it, together with whatever was pasted with it: a
/// text with line breaks comes as a whole. Empty when the input has ended. The terminal shows keys again before any
/// signal ends or stops the program.
[[nodiscard]] QString readHidden();

} // namespace platform::desktop
