// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>
#include <optional>
#include <stop_token>

namespace platform {

/// What the signature of an application bundle vouches for.
struct SigningInformation {
    QString teamIdentifier;
    /// The application's identifier.
    QString identifier;
    QString version;
};

/// Lets a caller follow a long operation and stop it.
struct Watch {
    std::stop_token stop;
    /// Called with the part that is done, from 0 to 1, on the working thread. May be empty.
    std::function<void(double)> progress;
};

/// Tells who made an application bundle. Any thread; each call reads the whole bundle.
class CodeSigning {
  public:
    virtual ~CodeSigning() = default;
    /// Absent unless the bundle is this application, built for this kind of machine, its signature verifies under a key
    /// that is trusted for the team, and its files are exactly those that were signed. Any error means absent. Throws
    /// nothing but CancellationError.
    [[nodiscard]] virtual std::optional<SigningInformation> signingInformation(const QString &bundle,
                                                                               const Watch &watch) const = 0;
};

} // namespace platform
