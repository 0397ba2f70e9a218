// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/LinuxSystemTools.h"

#include "Platform/FileSystem.h"
#include "Platform/Linux/StandardError.h"
#include "Platform/Linux/Updates/ArchiveUnpacker.h"
#include "Platform/Linux/Updates/Manifest.h"
#include "Platform/Linux/Updates/UserApplications.h"

#include <QFile>
#include <QProcess>

#include <linux/close_range.h>
#include <unistd.h>

namespace platform::desktop {

namespace {
const QString shell = QStringLiteral("/bin/sh");
/// Gives the old program a second to end, then waits up to 30 seconds more: it may still be writing its files.
const QString openCommand = QStringLiteral(
    "sleep 1; n=0; while kill -0 \"$1\" 2>/dev/null && [ $n -lt 300 ]; do sleep 0.1; n=$((n + 1)); done; exec \"$0\"");
} // namespace

bool LinuxSystemTools::unpackArchive(const QString &archive, const QString &folder, const std::stop_token &stop) {
    try {
        unpackZip(archive, folder, stop);
        return true;
    } catch (const UnpackError &error) {
        sayOnStandardError(QString::fromUtf8(error.what()));
        return false;
    }
}

void LinuxSystemTools::relaunchAfterExit(const QString &application) {
    const QString program = applications::resolved(application) + u'/' + QLatin1StringView(bundleName::program);
    if (::access(QFile::encodeName(program).constData(), X_OK) != 0) {
        throw FileError((program + QStringLiteral(" is not a program that can be started.")).toStdString());
    }
    QProcess opener; // in a session of its own
    opener.setProgram(shell);
    opener.setArguments({QStringLiteral("-c"), openCommand, program, QString::number(::getpid())});
    opener.setStandardInputFile(QProcess::nullDevice());
    opener.setStandardOutputFile(QProcess::nullDevice());
    opener.setStandardErrorFile(QProcess::nullDevice());
    // QProcess leaves descriptors open that a library opened without O_CLOEXEC.
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    if (!opener.startDetached()) {
        throw FileError(QStringLiteral("%1 could not be started: %2.").arg(shell, opener.errorString()).toStdString());
    }
}

} // namespace platform::desktop
