// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CodeSigning.h"
#include "Platform/Linux/Updates/Manifest.h"
#include "Platform/Linux/Updates/SigningKeys.h"

namespace platform::desktop {

/// The identifier of this application in the manifests of its bundles.
inline const QString applicationIdentifier = QStringLiteral("org.quillory.Quillory");

/// Verifies a bundle by its manifest and the detached signature beside it. A team may have changed its key: statements
/// in the bundle that say so are followed, starting from the keys that are trusted here.
class LinuxCodeSigning final : public CodeSigning {
  public:
    explicit LinuxCodeSigning(TrustedKeys keys) : m_keys(std::move(keys)) {}
    /// Trusts the keys that a bundle, such as that of the running program, names, or the keys that replaced them.
    /// Trusts nobody when there is no bundle.
    [[nodiscard]] static LinuxCodeSigning ofBundle(const QString &bundle);

    [[nodiscard]] std::optional<SigningInformation> signingInformation(const QString &bundle,
                                                                       const Watch &watch) const override;
    /// For example "x86_64".
    [[nodiscard]] static QString hostArchitecture();

  private:
    TrustedKeys m_keys;
};

/// Writes a bundle's manifest and its signature. Throws FileError, also for a bundle that would never verify.
void signBundle(const QString &bundle, const QString &version, const SigningKey &key,
                const QString &architecture = LinuxCodeSigning::hostArchitecture(),
                const QString &identifier = applicationIdentifier);

} // namespace platform::desktop
