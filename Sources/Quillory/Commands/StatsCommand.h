// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

[[nodiscard]] const CommandSyntax &statsSyntax();

/// Shows the choices recorded in a file, summed up for each model, as a table or, with "--json", as JSON. Damaged lines
/// are reported on the error stream and left out. Returns the exit status.
[[nodiscard]] int runStatsCommand(const QStringList &arguments, const QString &path, const CommandStreams &streams);

} // namespace quillory
