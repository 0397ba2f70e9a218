// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The program's diagnostic log, "Library/Logs/Quillory.log" under its home folder.
namespace quillory::FileLog {

/// Sets the home folder; the log's own folder in it must exist. Lines logged before are lost. Called once, before other
/// threads start; a test calls it for each home folder of its own.
void open(const QString &homeDirectory);
/// Appends the time of day ("HH:mm:ss.SSS"), a space and the message as one line. From any thread. Never fails: what
/// cannot be written is lost.
void log(const QString &message);
/// Appends bytes to any file in a single write, so that lines of several threads or processes never mix. Creates the
/// file if needed, but not its folder. False if the bytes were lost.
bool append(const QString &file, const QByteArray &bytes);

} // namespace quillory::FileLog
