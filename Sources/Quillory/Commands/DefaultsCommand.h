// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

/// "quillory defaults read [KEY]", "write KEY VALUE" and "delete KEY". Takes only known settings and values of their
/// types. The API key comes from standard input alone, is stored where the set-up would store it, and is never shown.
[[nodiscard]] const Command &defaultsCommand();

/// A line for each setting: its key, the values that it takes and what it means.
[[nodiscard]] QString describeSettings();

} // namespace quillory
