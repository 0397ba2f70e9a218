// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

/// "quillory setup [--terminal]": sets up what Quillory needs, in a window or, without a display, by questions in the
/// terminal. Succeeds when nothing keeps Quillory from working afterwards.
[[nodiscard]] const Command &setupCommand();

} // namespace quillory
