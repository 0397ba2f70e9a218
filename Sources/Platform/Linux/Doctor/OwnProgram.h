// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Where a later process finds the program that runs now.
namespace platform::desktop::ownProgram {

/// What /proc/self/exe leads to.
[[nodiscard]] QString executable();
/// The path at which the program stands. An update that replaced it since leaves the running one without a name, or
/// under one that was its own for an instant; then it is the path of what took its place.
[[nodiscard]] QString path(const QString &running = executable());
/// The program that a login starts: where the one given is the user's own and a package has one too, the package's.
/// That gives way to a newer own one by itself, and is still there when the user removes the own one.
[[nodiscard]] QString atLogin(const QString &own, const QString &packaged = QStringLiteral("/usr/bin/quillory"));

} // namespace platform::desktop::ownProgram
