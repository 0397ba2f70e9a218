// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

[[nodiscard]] const CommandSyntax &defaultsSyntax();

/// Shows or changes settings: "read [KEY]", "write KEY VALUE" or "delete KEY". Only the settings that the program has,
/// with values of their types. The API key comes from standard input alone, is kept where the set-up would keep it, and
/// is never shown. Gives the exit status.
[[nodiscard]] int runDefaultsCommand(const QStringList &arguments, const CommandSettings &settings,
                                     const CommandStreams &streams);

/// One line for each setting: its key, what it takes, what it does.
[[nodiscard]] QString describeSettings();

} // namespace quillory
