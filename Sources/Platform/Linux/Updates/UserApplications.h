// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CodeSigning.h"

#include <QByteArray>
#include <QString>

#include <functional>

/// The user's own folder of applications, where updates are installed.
namespace platform::desktop::applications {

/// The folder that "/Applications" stands for.
[[nodiscard]] QString folder();
/// The real path for one that may begin with "/Applications/".
[[nodiscard]] QString resolved(const QString &path);
/// The executable of the running program, without symbolic links. Ends with " (deleted)" once it has been replaced.
[[nodiscard]] QString runningProgram();
/// The folder of the running program, which is a bundle unless the program was just built.
[[nodiscard]] QString runningBundle();

/// Whether the user's own genuine Quillory should run in place of the running version.
using Precedence = std::function<bool(const SigningInformation &own, const QString &running)>;
/// Repairs what an interrupted install left, and returns the program of the user's own Quillory if that takes
/// precedence over the running one: it is another bundle, in folders that only the user can change, signed by a team
/// that the running one trusts, and able to start. Empty otherwise, and always when the running program has no signed
/// bundle. Reads the whole bundle, and waits at most three seconds for its program.
[[nodiscard]] QByteArray programToPrefer(const QString &running, const Precedence &takesPrecedence);

} // namespace platform::desktop::applications
