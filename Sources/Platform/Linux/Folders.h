// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Where this program's files belong on a Linux desktop, as absolute paths. The folders need not exist.
namespace platform::desktop::folders {

/// "quillory" in $XDG_CONFIG_HOME, by default in ~/.config.
[[nodiscard]] QString configuration();
/// "quillory" in $XDG_DATA_HOME, by default in ~/.local/share.
[[nodiscard]] QString data();
/// "quillory" in $XDG_RUNTIME_DIR, which lasts as long as the user is logged in; without one the folder of the data.
[[nodiscard]] QString runtime();
/// Makes a folder and the missing ones above it, for their owner alone. False when there is no such folder afterwards.
bool make(const QString &path);
/// The folder for temporary files. Throws FileError unless checkPlace() accepts it.
[[nodiscard]] QString temporary();
/// Throws FileError if anybody but this user and root could replace what is in the folder, judging by the owners and
/// modes of the folder and of those above it. In a sticky folder such as /tmp nobody can.
void checkPlace(const QString &folder);
/// The same; besides, the folder must be this user's and nobody else may add anything to it.
void checkOwn(const QString &folder);

} // namespace platform::desktop::folders
