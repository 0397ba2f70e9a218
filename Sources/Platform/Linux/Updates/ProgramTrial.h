// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <chrono>
#include <stop_token>

namespace platform::desktop {

enum class ProgramTrial {
    works,
    /// It cannot be loaded or ends with an error, for example because this computer lacks a library.
    fails,
    /// It took too long and was killed.
    hangs,
};

/// Runs a bundle's program with --version, its output discarded and all its libraries bound. Blocks until it ends, for
/// at most the patience. Throws CancellationError.
[[nodiscard]] ProgramTrial tryProgram(const QString &bundle, std::chrono::milliseconds patience,
                                      const std::stop_token &stop = {});

} // namespace platform::desktop
