// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <string>
#include <vector>

/// Settings with which browsers ask no questions, load nothing on their own and show no pages of their own.
namespace quillory::test::browserSettings {

[[nodiscard]] std::vector<std::string> chromiumSwitches();
/// Makes a profile in which every host name leads to this machine, so that nothing leaves it. Throws
/// std::runtime_error when it cannot be written.
void makeFirefoxProfile(const QString &folder);

} // namespace quillory::test::browserSettings
