// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Updates/UserApplications.h"

#include <QString>

/// Where to find the running program again, even after an update, and its entry in the folder from which desktops start
/// programs at login.
namespace platform::desktop::autostart {

[[nodiscard]] bool isOn();
/// Returns whether that worked. The entry starts programAtLogin().
[[nodiscard]] bool set(bool on);

/// The path to start the program from. If an update has replaced the running one since, that is the path of the new
/// one.
[[nodiscard]] QString program(const QString &running = applications::runningProgram());
/// The program to start at login: for the user's own copy, the packaged one if there is one. That prefers a newer own
/// copy by itself, and is still there when the user removes it.
[[nodiscard]] QString programAtLogin(const QString &own = program(),
                                     const QString &packaged = QStringLiteral("/usr/bin/quillory"));

} // namespace platform::desktop::autostart
