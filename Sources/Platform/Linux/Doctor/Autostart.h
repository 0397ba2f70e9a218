// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Whether Quillory starts at login: an entry in the folder from which desktops start programs.
namespace platform::desktop::autostart {

[[nodiscard]] bool isOn();
/// Returns whether that worked. The entry starts this executable, or the one of an installed package.
[[nodiscard]] bool set(bool on);

} // namespace platform::desktop::autostart
