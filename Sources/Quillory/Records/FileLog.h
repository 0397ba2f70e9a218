// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The program's diagnostic log, "Library/Logs/Quillory.log" under its home folder.
namespace quillory::FileLog {

/// Says under which home folder the log is, whose folder must exist. Before that, lines are lost. Called once, before
/// other threads log; a test calls it for each home of its own.
void open(const QString &homeDirectory);
/// Appends the time of day ("HH:mm:ss.SSS"), a space and the message as one line. From any thread. Never fails: what
/// cannot be written is lost.
void log(const QString &message);

} // namespace quillory::FileLog
