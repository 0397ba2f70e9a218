// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

/// "quillory rewrite [--tone TONE] [--json] [TEXT]": rewrites a draft, given as arguments or on standard input. A
/// terminal shows the answer as it grows. It is screened like Quillory's own suggestions.
[[nodiscard]] const Command &rewriteCommand();

} // namespace quillory
