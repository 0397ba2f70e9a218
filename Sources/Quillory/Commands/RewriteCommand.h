// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

[[nodiscard]] const CommandSyntax &rewriteSyntax();

/// Rewrites a draft, given as arguments or on standard input: "[--tone TONE] [--json] [TEXT ...]". A terminal shows the
/// answer as it grows. It is screened like Quillory's own suggestions. Blocks until the answer is complete. Returns the
/// exit status.
[[nodiscard]] int runRewriteCommand(const QStringList &arguments, const ModelAccess &access,
                                    const CommandStreams &streams);

} // namespace quillory
