// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/LinuxFileSystem.h"

#include "Platform/Linux/Folders.h"
#include "Platform/Linux/Updates/BundleInstaller.h"
#include "Platform/Linux/Updates/FileTree.h"
#include "Platform/Linux/Updates/UserApplications.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::desktop {

namespace {
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

QString LinuxFileSystem::temporaryDirectory() const {
    return folders::temporary();
}

void LinuxFileSystem::createDirectory(const QString &path) {
    const QFileInfo wanted(applications::resolved(path));
    folders::make(wanted.path());
    fileTree::checked(::mkdir(QFile::encodeName(wanted.filePath()).constData(), S_IRWXU),
                      QStringLiteral("The folder %1 could not be made").arg(path));
    hold(path);
}

void LinuxFileSystem::hold(const QString &path) noexcept {
    const QByteArray name = QFile::encodeName(applications::resolved(path));
    FileDescriptor held(::open(name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (held && ::flock(held.get(), LOCK_SH | LOCK_NB) == 0) {
        const std::scoped_lock lock(m_mutex);
        m_locks[path] = std::move(held);
    }
}

QStringList LinuxFileSystem::contentsOfDirectory(const QString &path) {
    const QString folder = applications::resolved(path);
    (void)fileTree::openFolder(folder); // throws when it cannot be read, which QDir does not report
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

void LinuxFileSystem::removeItem(const QString &path) noexcept {
    fileTree::remove(AT_FDCWD, QFile::encodeName(applications::resolved(path)).constData());
    const std::scoped_lock lock(m_mutex);
    m_locks.erase(path);
}

void LinuxFileSystem::removeAbandoned(const QStringList &beginnings) noexcept {
    QStringList patterns;
    for (const QString &beginning : beginnings) {
        patterns += beginning + u'*';
    }
    const QDir folder(QDir::tempPath());
    for (const QString &name : folder.entryList(patterns, QDir::AllEntries | QDir::Hidden | QDir::System)) {
        const QByteArray path = QFile::encodeName(folder.filePath(name));
        if (isAbandoned(path)) {
            fileTree::remove(AT_FDCWD, path.constData());
        }
    }
}

void LinuxFileSystem::replaceItem(const QString &installed, const QString &found, const Approval &approve,
                                  const std::stop_token &stop) {
    const QFileInfo target(applications::resolved(installed));
    BundleInstaller(target.path(), m_signing)
        .install(applications::resolved(found), QFile::encodeName(target.fileName()), approve, stop);
}

} // namespace platform::desktop
