// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Updates/LinuxFileSystem.h"

#include "Platform/Linux/Folders.h"
#include "Platform/Linux/Updates/BundleInstaller.h"
#include "Platform/Linux/Updates/FileTree.h"
#include "Platform/Linux/Updates/UserApplications.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <ctime>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::desktop {

QString LinuxFileSystem::temporaryDirectory() const {
    return QDir::tempPath();
}

void LinuxFileSystem::createDirectory(const QString &path) {
    const QFileInfo wanted(applications::resolved(path));
    folders::make(wanted.path());
    fileTree::checked(::mkdir(QFile::encodeName(wanted.filePath()).constData(), S_IRWXU),
                      QStringLiteral("The folder %1 could not be made").arg(path));
}

QStringList LinuxFileSystem::contentsOfDirectory(const QString &path) {
    const QString folder = applications::resolved(path);
    (void)fileTree::openFolder(folder); // says why when it cannot be read
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

void LinuxFileSystem::removeItem(const QString &path) noexcept {
    fileTree::remove(AT_FDCWD, QFile::encodeName(applications::resolved(path)).constData());
}

void LinuxFileSystem::removeAbandoned(const QStringList &beginnings) noexcept {
    // A download that lives gets bytes or gives up sooner.
    constexpr time_t abandonedAfter = 600;
    QStringList patterns;
    for (const QString &beginning : beginnings) {
        patterns += beginning + u'*';
    }
    const QDir folder(temporaryDirectory());
    for (const QString &name : folder.entryList(patterns, QDir::AllEntries | QDir::Hidden | QDir::System)) {
        struct stat status {};
        const QByteArray path = QFile::encodeName(folder.filePath(name));
        if (::lstat(path.constData(), &status) == 0 && status.st_uid == ::geteuid() &&
            status.st_mtime + abandonedAfter < ::time(nullptr)) {
            fileTree::remove(AT_FDCWD, path.constData());
        }
    }
}

void LinuxFileSystem::replaceItem(const QString &installed, const QString &found, const Approval &approve,
                                  const std::stop_token &stop) {
    const QFileInfo target(applications::resolved(installed));
    BundleInstaller(target.path())
        .install(applications::resolved(found), QFile::encodeName(target.fileName()), approve, stop);
}

} // namespace platform::desktop
