// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Updates/UserApplications.h"

#include <QString>

/// Where to find the running program again, even after an update.
namespace platform::desktop::ownProgram {

/// The path to start the program from. If an update has replaced the running one since, that is the path of the new
/// one.
[[nodiscard]] QString path(const QString &running = applications::runningProgram());
/// The program to start at login: for the user's own copy, the packaged one if there is one. That prefers a newer own
/// copy by itself, and is still there when the user removes it.
[[nodiscard]] QString atLogin(const QString &own, const QString &packaged = QStringLiteral("/usr/bin/quillory"));

} // namespace platform::desktop::ownProgram
