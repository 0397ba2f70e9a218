// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

/// "quillory stats [--json]": what the file of choices says about the models. Damaged lines are named on standard error
/// and not counted. Fails when nothing has been recorded yet.
[[nodiscard]] const Command &statsCommand();

} // namespace quillory
