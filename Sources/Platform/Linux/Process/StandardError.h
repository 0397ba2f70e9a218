// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace platform::desktop {

/// Tells whoever started the program something, as one line with the program's name before it. Any thread.
void sayOnStandardError(const QString &sentence);

} // namespace platform::desktop
