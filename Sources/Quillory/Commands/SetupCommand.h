// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

[[nodiscard]] const CommandSyntax &setupSyntax();

/// Sets Quillory up: in a window, or with questions in the terminal where there is no display or "--terminal" is given.
/// Returns the exit status: success when nothing keeps Quillory from working afterwards.
[[nodiscard]] int runSetupCommand(const QStringList &arguments, const CommandServices &services,
                                  const CommandStreams &streams);

} // namespace quillory
