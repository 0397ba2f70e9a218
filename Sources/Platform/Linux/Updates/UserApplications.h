// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CodeSigning.h"

#include <QByteArray>
#include <QString>

#include <functional>

/// The user's own applications, of which Quillory is one.
namespace platform::desktop::applications {

/// The folder that "/Applications" stands for.
[[nodiscard]] QString folder();
/// The path on this computer of one that may begin with "/Applications/".
[[nodiscard]] QString resolved(const QString &path);
/// The bundle that the running program stands in, whether that is a bundle or just a folder.
[[nodiscard]] QString runningBundle();

/// Whether the user's own Quillory, which is genuine, comes before a running version.
using Precedence = std::function<bool(const SigningInformation &own, const QString &running)>;
/// Puts right what an interrupted install left, and gives the program of the user's own Quillory when that takes
/// precedence over the running one: another bundle, in folders that only the user can change, signed by a team that the
/// running one trusts, and able to start here. Empty otherwise, and always for a program that was not started from a
/// signed bundle. Reads the whole bundle, and waits for its program for three seconds at most.
[[nodiscard]] QByteArray programToPrefer(const QString &running, const Precedence &takesPrecedence);

} // namespace platform::desktop::applications
