// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/LinuxInstallation.h"

#include "Platform/Linux/Folders.h"
#include "Platform/Linux/StandardError.h"
#include "Platform/Linux/Updates/ArchiveUnpacker.h"
#include "Platform/Linux/Updates/BundleInstaller.h"
#include "Platform/Linux/Updates/FileTree.h"
#include "Platform/Linux/Updates/UserApplications.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QUuid>

#include <ctime>
#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::desktop {

namespace {
const QString shell = QStringLiteral("/bin/sh");
/// Gives the old program a second to end, then waits up to 30 seconds more: it may still be writing its files.
const QString openCommand = QStringLiteral(
    "sleep 1; n=0; while kill -0 \"$1\" 2>/dev/null && [ $n -lt 300 ]; do sleep 0.1; n=$((n + 1)); done; exec \"$0\"");

/// Whether a file or folder of this user was not changed for minutes and is held by nobody.
bool isAbandoned(const QByteArray &path) {
    // A running download gets bytes or gives up sooner. The lock protects one that slept with the computer.
    constexpr time_t abandonedAfter = 600;
    const FileDescriptor file(::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    return file && ::fstat(file.get(), &status) == 0 && status.st_uid == ::geteuid() &&
           status.st_mtime + abandonedAfter < ::time(nullptr) && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}
} // namespace

QString LinuxInstallation::makeWorkFolder(const QString &beginning) {
    QString path =
        folders::temporary() + u'/' + beginning + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    fileTree::checked(::mkdir(QFile::encodeName(path).constData(), S_IRWXU),
                      QStringLiteral("The folder %1 could not be made").arg(path));
    hold(path);
    return path;
}

void LinuxInstallation::hold(const QString &path) noexcept {
    FileDescriptor held(::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (held && ::flock(held.get(), LOCK_SH | LOCK_NB) == 0) {
        const std::scoped_lock lock(m_mutex);
        m_locks[path] = std::move(held);
    }
}

void LinuxInstallation::removeItem(const QString &path) noexcept {
    fileTree::remove(AT_FDCWD, QFile::encodeName(path));
    const std::scoped_lock lock(m_mutex);
    m_locks.erase(path);
}

void LinuxInstallation::removeAbandoned(const QStringList &beginnings) noexcept {
    QStringList patterns;
    for (const QString &beginning : beginnings) {
        patterns += beginning + u'*';
    }
    const QDir folder(QDir::tempPath());
    for (const QString &name : folder.entryList(patterns, QDir::AllEntries | QDir::Hidden | QDir::System)) {
        const QByteArray path = QFile::encodeName(folder.filePath(name));
        if (isAbandoned(path)) {
            fileTree::remove(AT_FDCWD, path);
        }
    }
}

bool LinuxInstallation::unpackArchive(const QString &archive, const QString &folder, const std::stop_token &stop) {
    try {
        unpackZip(archive, folder, stop);
        return true;
    } catch (const UnpackError &error) {
        sayOnStandardError(QString::fromUtf8(error.what()));
        return false;
    }
}

void LinuxInstallation::replaceItem(const QString &installed, const QString &found, const Approval &approve,
                                    const std::stop_token &stop) {
    const QFileInfo target(applications::resolved(installed));
    BundleInstaller(target.path(), m_signing).install(found, QFile::encodeName(target.fileName()), approve, stop);
}

void LinuxInstallation::relaunchAfterExit(const QString &application) {
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
