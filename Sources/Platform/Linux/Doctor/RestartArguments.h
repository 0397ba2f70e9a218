// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace platform::desktop {

/// What a program is built on decides how it is told to run on the X display.
enum class ProgramKind { chromium, electron, mozilla, other };

/// Those whose identifier does not say for sure that they understand Chromium's switches are among the others.
[[nodiscard]] ProgramKind programKind(const QString &bundleIdentifier);

/// What to start a program with so that it shows what it shows now, from its whole command line as the kernel has it
/// and the path of its executable. `isFolder` answers for a path that may be relative to the program's folder.
[[nodiscard]] QStringList restartArguments(ProgramKind kind, const QStringList &commandLine, const QString &executable,
                                           const std::function<bool(const QString &)> &isFolder);

} // namespace platform::desktop
