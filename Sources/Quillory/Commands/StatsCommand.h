// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

[[nodiscard]] const CommandSyntax &statsSyntax();

/// Shows how the models fared in the choices recorded in a file, as a table or, with "--json", as JSON. Damaged lines
/// are counted and named on the error stream; the rest counts. Gives the exit status.
[[nodiscard]] int runStatsCommand(const QStringList &arguments, const QString &path, const CommandStreams &streams);

} // namespace quillory
