// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

[[nodiscard]] const CommandSyntax &rewriteSyntax();

/// Rewrites a draft, given as arguments or on standard input: "[--tone TONE] [--json] [TEXT ...]". On a terminal the
/// answer is shown while it comes. It is screened as the program's own suggestions are. Blocks until the answer is
/// whole; the platform must be installed. Gives the exit status.
[[nodiscard]] int runRewriteCommand(const QStringList &arguments, const CommandStreams &streams);

} // namespace quillory
