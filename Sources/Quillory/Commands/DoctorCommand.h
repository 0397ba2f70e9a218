// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"
#include "Quillory/Setup/Diagnosis.h"

namespace quillory {

[[nodiscard]] const CommandSyntax &doctorSyntax();

/// Checks everything that Quillory needs and says what to do, a line for each check or, with "--json", as JSON. With
/// "--fix" it first does what is safe: it switches accessibility on. Returns the exit status: success when nothing
/// keeps Quillory from working.
[[nodiscard]] int runDoctorCommand(const QStringList &arguments, const CommandServices &services,
                                   const CommandStreams &streams);

/// Prints findings as a table, and whether Quillory can work.
void writeFindings(std::ostream &output, const std::vector<Finding> &findings);

[[nodiscard]] const CommandSyntax &autostartSyntax();

/// "quillory autostart on" and "off". Returns the exit status.
[[nodiscard]] int runAutostartCommand(const QStringList &arguments, const CommandServices &services,
                                      const CommandStreams &streams);

} // namespace quillory
