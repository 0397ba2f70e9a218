// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <string>
#include <vector>

/// What makes browsers ask nobody anything, load nothing that is not asked for, and show no page of their own.
namespace quillory::test::browserSettings {

[[nodiscard]] std::vector<std::string> chromiumSwitches();
/// Makes a profile in which every host name stands on this machine, so that nothing leaves it. Throws
/// std::runtime_error when it cannot be written.
void makeFirefoxProfile(const QString &folder);

} // namespace quillory::test::browserSettings
