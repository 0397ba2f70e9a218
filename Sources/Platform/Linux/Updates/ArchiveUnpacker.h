// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <stdexcept>
#include <stop_token>

namespace platform::desktop {

/// An archive that is broken, or not fit to be unpacked.
class UnpackError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What an archive may unpack to. Quillory itself is a few megabytes.
struct UnpackLimits {
    qint64 mostBytes = qint64{512} << 20;
    int mostEntries = 10'000;
    /// Unpacked bytes for each byte of the archive, beyond the first megabyte.
    int largestRatio = 100;
};

/// Unpacks a zip archive into an empty folder: files and folders only, under the names that stand in it, nothing
/// outside of the folder, nothing twice. The folder is left as it is when that fails. Throws UnpackError or
/// CancellationError.
void unpackZip(const QString &archive, const QString &folder, const std::stop_token &stop,
               const UnpackLimits &limits = UnpackLimits());

} // namespace platform::desktop
