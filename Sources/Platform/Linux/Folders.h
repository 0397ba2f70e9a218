// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Where this program's files belong on a Linux desktop, as absolute paths. None of the folders need exist.
namespace platform::desktop::folders {

/// "quillory" in $XDG_CONFIG_HOME, by default in ~/.config.
[[nodiscard]] QString configuration();
/// "quillory" in $XDG_DATA_HOME, by default in ~/.local/share.
[[nodiscard]] QString data();
/// "quillory" in $XDG_RUNTIME_DIR, which lasts as long as the user is logged in; without one the folder of the data.
[[nodiscard]] QString runtime();
/// Makes a folder and what is missing above it, for their owner alone. False when there is no such folder afterwards.
bool make(const QString &path);
/// The folder for files of no lasting worth. Throws FileError unless its place is safe, as below.
[[nodiscard]] QString temporary();
/// Throws FileError if somebody but this user and root could put something else in the place of what is in a folder: by
/// the owner or the mode of the folder or of one above it. In a sticky folder, as /tmp is one, nobody can.
void checkPlace(const QString &folder);
/// The same, and nobody else may add anything to the folder, which must be this user's.
void checkOwn(const QString &folder);

} // namespace platform::desktop::folders
