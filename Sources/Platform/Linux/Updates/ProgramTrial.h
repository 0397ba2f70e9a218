// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <chrono>
#include <stop_token>

namespace platform::desktop {

/// Runs a bundle's program with --version, its output discarded and all its libraries bound. False when it cannot be
/// loaded or ends with an error, for example because this computer lacks a library, and when it has not ended in time;
/// it is killed then. Blocks meanwhile. Throws CancellationError.
[[nodiscard]] bool canStart(const QString &bundle, std::chrono::milliseconds patience,
                            const std::stop_token &stop = {});

} // namespace platform::desktop
