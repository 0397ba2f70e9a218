// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

[[nodiscard]] const CommandSyntax &defaultsSyntax();

/// Shows or changes settings: "read [KEY]", "write KEY VALUE" or "delete KEY". Takes only known settings and values of
/// their types. The API key comes from standard input alone, is stored where the set-up would store it, and is never
/// shown. Returns the exit status.
[[nodiscard]] int runDefaultsCommand(const QStringList &arguments, const CommandSettings &settings,
                                     const CommandStreams &streams);

/// One line for each setting: its key, the values it takes, its meaning.
[[nodiscard]] QString describeSettings();

} // namespace quillory
