// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace platform::desktop {

/// Writes a line with the program's name before it to standard error. Any thread.
void sayOnStandardError(const QString &sentence);

} // namespace platform::desktop
