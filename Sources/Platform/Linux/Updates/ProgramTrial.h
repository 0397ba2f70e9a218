// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <chrono>
#include <stop_token>

namespace platform::desktop {

enum class ProgramTrial {
    works,
    /// It cannot be loaded, or ends with an error. A genuine program may, on a computer that lacks a library.
    fails,
    /// It took longer than the patience, and was ended.
    hangs,
};

/// Lets a bundle's program say its version, to nobody, with everything that it is linked to. Blocks for as long as that
/// takes, the patience at most. Throws FileError when nothing can be started at all, and CancellationError.
[[nodiscard]] ProgramTrial tryProgram(const QString &bundle, std::chrono::milliseconds patience,
                                      const std::stop_token &stop = {});

} // namespace platform::desktop
