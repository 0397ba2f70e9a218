// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <sys/types.h>
#include <vector>

namespace platform::desktop {

/// One file or folder of a bundle.
struct BundleEntry {
    /// Below the bundle's folder, with "/" between names.
    QByteArray path;
    bool isFolder = false;
    mode_t mode = 0;
    /// Of a file, as is the digest.
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

/// Whether a path may stand in a bundle or an archive: relative, clean, readable, of composed characters, and neither
/// long nor deep.
[[nodiscard]] bool isSafePath(const QByteArray &path);

/// What is signed of a bundle: whose it is, and everything in it but the manifest and its signature.
struct Manifest {
    QString identifier;
    QString version;
    QString architecture;
    QString team;
    /// In order of path.
    std::vector<BundleEntry> entries;

    /// The one written form.
    [[nodiscard]] QByteArray written() const;
    /// Absent for anything but a written form, to the byte.
    [[nodiscard]] static std::optional<Manifest> parsed(const QByteArray &text);
};

} // namespace platform::desktop
