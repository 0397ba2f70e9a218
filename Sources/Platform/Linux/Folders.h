// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <QString>

/// Where this program's files belong on a Linux desktop, as absolute paths. None of the folders need exist.
namespace platform::desktop::folders {

/// "quillory" in $XDG_CONFIG_HOME, by default in ~/.config.
[[nodiscard]] QString configuration();
/// "quillory" in $XDG_DATA_HOME, by default in ~/.local/share.
[[nodiscard]] QString data();
/// Makes a folder and what is missing above it, for their owner alone. False when there is no such folder afterwards.
bool make(const QString &path);

} // namespace platform::desktop::folders
