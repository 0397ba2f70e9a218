// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CodeSigning.h"
#include "Platform/Linux/Updates/Manifest.h"
#include "Platform/Linux/Updates/SigningKeys.h"

namespace platform::desktop {

/// The identifier of this application, as bundles state it.
inline const QString applicationIdentifier = QStringLiteral("org.quillory.Quillory");

/// Verifies a bundle by its manifest and the detached signature beside it. A team may have handed over to another key
/// since: statements of that, in the bundle, are followed from the keys trusted here.
class LinuxCodeSigning final : public CodeSigning {
  public:
    explicit LinuxCodeSigning(TrustedKeys keys, const QString &identifier = applicationIdentifier,
                              const QString &architecture = hostArchitecture());
    /// Trusting the keys that the bundle of the running program names, and those that they have handed over to; nobody
    /// when it runs outside of a bundle.
    [[nodiscard]] static LinuxCodeSigning ofBundle(const QString &bundle);

    [[nodiscard]] std::optional<SigningInformation> signingInformation(const QString &bundle,
                                                                       const Watch &watch) const override;
    /// For example "x86_64".
    [[nodiscard]] static QString hostArchitecture();

  private:
    TrustedKeys m_keys;
    QString m_identifier;
    QString m_architecture;
};

/// Writes the manifest of a bundle, with these words about it, and its signature. Throws FileError, also for a tree
/// that no signature could vouch for.
void signBundle(const QString &bundle, const QString &version, const QString &architecture, const SigningKey &key,
                const QString &identifier = applicationIdentifier);

} // namespace platform::desktop
