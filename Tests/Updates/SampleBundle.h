// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Updates/LinuxCodeSigning.h"
#include "SimulatedDesktop/SimulatedProcess.h"

#include <QByteArray>
#include <QString>

#include <string>
#include <vector>

namespace quillory::test {

/// The team that the tests' programs trust, and its key.
inline const QString team = QStringLiteral("QUILLORY26");
[[nodiscard]] const platform::desktop::SigningKey &teamKey();
/// Trusting that key alone.
[[nodiscard]] platform::desktop::LinuxCodeSigning trustingTeam();

/// Makes an unsigned bundle of a few files, whose program ends with the version as its exit status.
void makeBundle(const QString &path, int version);
/// The same, signed.
void makeSignedBundle(const QString &path, int version, const platform::desktop::SigningKey &key = teamKey());
/// The version that a bundle's signature vouches for, or "none".
[[nodiscard]] std::string vouchedVersion(const QString &bundle);
/// The exit status of a bundle's program.
[[nodiscard]] int started(const QString &bundle);

/// For throwaway folders in memory, where that can be: tests sync files by the thousand.
[[nodiscard]] QString folderTemplate();
void writeFile(const QString &path, const QByteArray &bytes, unsigned mode = 0644);

struct ZipItem {
    QByteArray name;
    QByteArray content;
    /// As in a file's status: kind and permissions.
    unsigned mode = 0100644;
    bool isCompressed = false;
};
/// A zip archive, written with all the freedom that an attacker has.
[[nodiscard]] QByteArray zipWith(const std::vector<ZipItem> &items);
/// An archive with everything in a folder, below a name.
[[nodiscard]] QByteArray zipOf(const QString &folder, const QByteArray &name = "Quillory.app");

} // namespace quillory::test
