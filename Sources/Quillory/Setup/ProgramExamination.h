// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Model/ModelAccess.h"
#include "Quillory/Setup/Diagnosis.h"

#include <stop_token>

namespace quillory {

/// Examines Quillory's own set-up: its key, and whether the model service can be reached, to which it sends one request
/// without the key. May take some seconds, and returns what it has once asked to stop; not for the main thread of a
/// program with windows.
[[nodiscard]] ProgramFacts examineProgram(const ModelAccess &access, const std::stop_token &stop);

} // namespace quillory
