// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>

namespace platform::desktop {

/// Keeps a program that is about to be started away from this one: it gets the environment without the API key and
/// Quillory's own variables, and its standard input and output go nowhere.
void keepApart(QProcess &program);

} // namespace platform::desktop
