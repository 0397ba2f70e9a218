// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>

namespace platform::desktop {

/// Makes a program that is about to be started a stranger to this one: it gets this one's environment without the API
/// key and this program's other variables, and nothing to read from or to write to.
void keepApart(QProcess &program);

} // namespace platform::desktop
