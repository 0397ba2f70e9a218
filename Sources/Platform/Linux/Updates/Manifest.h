// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <sys/types.h>
#include <vector>

namespace platform::desktop {

/// A file or folder in a bundle.
struct BundleEntry {
    /// Relative to the bundle, with "/" between names.
    QByteArray path;
    bool isFolder = false;
    mode_t mode = 0;
    /// Size and digest are only set for files.
    qint64 size = 0;
    /// SHA-256 in lower-case hexadecimal digits.
    QByteArray digest;
    friend bool operator==(const BundleEntry &, const BundleEntry &) = default;
};

/// Names within a bundle and an archive.
namespace bundleName {
inline constexpr auto manifest = "Manifest";
inline constexpr auto signature = "Manifest.signature";
inline constexpr auto keys = "UpdateKeys";
inline constexpr auto rotations = "UpdateKeys.rotations";
inline constexpr auto program = "quillory";
inline constexpr auto information = "Info.json";
} // namespace bundleName

/// Whether a path is allowed in a bundle or an archive: relative, without "." and "..", displayable, in Unicode's
/// normal form C, and neither long nor deep.
[[nodiscard]] bool isSafePath(const QByteArray &path);

/// A longer manifest is none.
inline constexpr qint64 largestManifest = 4 << 20;

/// The signed description of a bundle: who made it, and everything in it except for the manifest and its signature.
struct Manifest {
    QString identifier;
    QString version;
    QString architecture;
    QString team;
    /// Sorted by path.
    std::vector<BundleEntry> entries;

    /// The text form, of which there is exactly one.
    [[nodiscard]] QByteArray written() const;
    /// Absent unless written() gives the same text, byte for byte.
    [[nodiscard]] static std::optional<Manifest> parsed(const QByteArray &text);
};

} // namespace platform::desktop
