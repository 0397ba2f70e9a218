// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <stdexcept>
#include <stop_token>

namespace platform::desktop {

/// An archive is broken, or not safe to unpack.
class UnpackError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// How much an archive may unpack to. Quillory itself is a few megabytes.
struct UnpackLimits {
    qint64 mostBytes = qint64{512} << 20;
    int mostEntries = 10'000;
    /// Unpacked bytes per byte of the archive, after the first megabyte.
    int largestRatio = 100;
};

/// Unpacks a zip archive into an empty folder: only files and folders, under their own names, nothing outside the
/// folder, nothing twice. After a failure, what was unpacked so far stays. Throws UnpackError or CancellationError.
void unpackZip(const QString &archive, const QString &folder, const std::stop_token &stop,
               const UnpackLimits &limits = UnpackLimits());

} // namespace platform::desktop
