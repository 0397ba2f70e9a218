// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Whether the program starts with the user's session: an entry in the folder that desktops start programs from.
namespace platform::desktop::autostart {

[[nodiscard]] bool isOn();
/// Whether that worked. The entry starts this very executable, or the package's in its place.
[[nodiscard]] bool set(bool on);

} // namespace platform::desktop::autostart
