// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"
#include "Quillory/Setup/Diagnosis.h"

namespace quillory {

/// "quillory doctor [--fix] [--json]": checks everything that Quillory needs and says what to do, a line for each check
/// or as JSON. With "--fix" it first does what is safe: it switches accessibility on. Succeeds when nothing keeps
/// Quillory from working.
[[nodiscard]] const Command &doctorCommand();

/// "quillory autostart on" and "off".
[[nodiscard]] const Command &autostartCommand();

/// Prints findings as a table, and whether Quillory can work.
void writeFindings(std::ostream &output, const std::vector<Finding> &findings);

} // namespace quillory
