// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Setup/Diagnosis.h"

#include <stop_token>

namespace quillory {

/// Looks at the program's own set-up through the installed platform: its key, and whether the model service can be
/// reached, for which one request goes out that carries no key. May take some seconds, and gives what it has once the
/// token asks to stop; not on the main thread of a program that has windows.
[[nodiscard]] ProgramFacts examineProgram(const std::stop_token &stop);

} // namespace quillory
