// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Updates/BundleInstaller.h"

#include "Platform/Linux/Folders.h"
#include "Platform/Linux/Updates/FileTree.h"
#include "Platform/URLSession.h"

#include <QFile>

#include <cerrno>
#include <cstdio>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::desktop {

namespace {
constexpr auto lockName = ".install.lock";
constexpr mode_t bundleMode = 0755;

/// What a bundle is called while it is copied; the old one, while it is removed.
QByteArray newName(const QByteArray &name) {
    return '.' + name + ".new";
}

/// What the old bundle is called for an instant where names cannot be exchanged.
QByteArray previousName(const QByteArray &name) {
    return name + ".previous";
}

bool exists(int folder, const QByteArray &name) {
    struct stat status {};
    return ::fstatat(folder, name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool isSame(int folder, const QByteArray &name, int opened) {
    struct stat named {};
    struct stat open {};
    return ::fstatat(folder, name.constData(), &named, AT_SYMLINK_NOFOLLOW) == 0 && ::fstat(opened, &open) == 0 &&
           named.st_ino == open.st_ino && named.st_dev == open.st_dev;
}

void sync(int file) {
    fileTree::checked(::fsync(file), QStringLiteral("The files could not be brought to the disk"));
}

/// The folder, checked to be the user's alone to change.
FileDescriptor openOwn(const QString &path) {
    FileDescriptor folder = fileTree::openFolder(path);
    struct stat status {};
    fileTree::checked(::fstat(folder.get(), &status), QStringLiteral("The folder %1 could not be read").arg(path));
    if (status.st_uid != ::geteuid() || (status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        throw FileError(QStringLiteral("The folder %1 can be changed by others.").arg(path).toStdString());
    }
    return folder;
}

/// Kept while a process changes the folder; none when another one does.
FileDescriptor lock(int folder) {
    const int opened = ::openat(folder, lockName, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    FileDescriptor file(fileTree::checked(opened, QStringLiteral("The folder of applications could not be locked")));
    return ::flock(file.get(), LOCK_EX | LOCK_NB) == 0 ? std::move(file) : FileDescriptor();
}

void makeFolder(int parent, const QByteArray &path, mode_t mode) {
    const qsizetype slash = path.lastIndexOf('/');
    const FileDescriptor above = slash < 0 ? FileDescriptor() : fileTree::openBelow(parent, path.first(slash));
    fileTree::checked(::mkdirat(slash < 0 ? parent : above.get(), path.sliced(slash + 1).constData(), S_IRWXU),
                      QStringLiteral("A folder could not be made"));
    fileTree::checked(::fchmod(fileTree::openBelow(parent, path).get(), mode),
                      QStringLiteral("A mode could not be set"));
}

void copyFile(int from, int to, const BundleEntry &entry, const std::stop_token &stop) {
    const FileDescriptor source = fileTree::openBelow(from, entry.path);
    const qsizetype slash = entry.path.lastIndexOf('/');
    const FileDescriptor above = slash < 0 ? FileDescriptor() : fileTree::openBelow(to, entry.path.first(slash));
    const FileDescriptor copy(
        fileTree::checked(::openat(slash < 0 ? to : above.get(), entry.path.sliced(slash + 1).constData(),
                                   O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR),
                          QStringLiteral("A file could not be made")));
    fileTree::readAll(source.get(), [&](std::span<const char> piece) {
        if (stop.stop_requested()) {
            throw CancellationError();
        }
        fileTree::writeAll(copy.get(), piece);
    });
    fileTree::checked(::fchmod(copy.get(), entry.mode & bundleMode), QStringLiteral("A mode could not be set"));
    ::sync_file_range(copy.get(), 0, 0, SYNC_FILE_RANGE_WRITE); // it need not wait for the next file
}

/// Copies a bundle into a new folder of that name, on the disk when this returns, and gives the open copy.
FileDescriptor stage(int folder, const QByteArray &name, const QString &found, const std::stop_token &stop) {
    const FileDescriptor from = fileTree::openFolder(found);
    const std::vector<BundleEntry> entries = fileTree::list(from.get());
    makeFolder(folder, name, bundleMode);
    FileDescriptor to = fileTree::openBelow(folder, name);
    for (const BundleEntry &entry : entries) {
        if (entry.isFolder) {
            makeFolder(to.get(), entry.path, entry.mode & bundleMode);
        } else {
            copyFile(from.get(), to.get(), entry, stop);
        }
    }
    for (const BundleEntry &entry : entries) {
        sync(fileTree::openBelow(to.get(), entry.path).get());
    }
    sync(to.get());
    return to;
}

void rename(int folder, const QByteArray &from, const QByteArray &to, unsigned flags) {
    fileTree::checked(::renameat2(folder, from.constData(), folder, to.constData(), flags),
                      QStringLiteral("%1 could not take its place").arg(QString::fromUtf8(to)));
}

/// Gives the name to the other bundle, and the other's name to the one that had it, if one had.
void swap(int folder, const QByteArray &other, const QByteArray &name) {
    if (!exists(folder, name)) {
        rename(folder, other, name, RENAME_NOREPLACE);
        return;
    }
    if (::renameat2(folder, other.constData(), folder, name.constData(), RENAME_EXCHANGE) == 0) {
        return;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        fileTree::fail(QStringLiteral("%1 could not take its place").arg(QString::fromUtf8(name)));
    }
    rename(folder, name, previousName(name), 0);
    try {
        rename(folder, other, name, 0);
    } catch (const FileError &) {
        rename(folder, previousName(name), name, 0);
        throw;
    }
    ::renameat2(folder, previousName(name).constData(), folder, other.constData(), 0);
}

/// Gives everything back the place that it had before the install.
void undo(int folder, const QByteArray &name, bool isInPlace) {
    const QByteArray staged = newName(name);
    if (isInPlace && exists(folder, staged)) {
        swap(folder, staged, name);
    } else if (isInPlace) {
        rename(folder, name, staged, 0);
    }
    fileTree::remove(folder, staged.constData());
    ::fsync(folder);
}

/// Under the lock.
void putRight(int folder, const QByteArray &name) {
    const QByteArray previous = previousName(name);
    if (exists(folder, previous) && !exists(folder, name)) {
        rename(folder, previous, name, 0);
        sync(folder);
    }
    fileTree::remove(folder, previous.constData());
    fileTree::remove(folder, newName(name).constData());
}
} // namespace

void BundleInstaller::install(const QString &found, const QByteArray &name, const FileSystem::Approval &approve,
                              const std::stop_token &stop) const {
    folders::make(m_folder);
    const FileDescriptor folder = openOwn(m_folder);
    const FileDescriptor locked = lock(folder.get());
    if (!locked) {
        throw FileError("Another update is being installed.");
    }
    putRight(folder.get(), name);
    const QByteArray staged = newName(name);
    const QString prefix = m_folder + u'/';
    bool isInPlace = false;
    try {
        const FileDescriptor copy = stage(folder.get(), staged, found, stop);
        approve(prefix + QFile::decodeName(staged));
        swap(folder.get(), staged, name);
        isInPlace = true;
        sync(folder.get());
        // Somebody may have changed it in the instant before.
        approve(prefix + QFile::decodeName(name));
        if (!isSame(folder.get(), name, copy.get())) {
            throw FileError("The files were changed by another program meanwhile.");
        }
    } catch (...) {
        undo(folder.get(), name, isInPlace);
        throw;
    }
    fileTree::remove(folder.get(), staged.constData());
}

void BundleInstaller::recover(const QByteArray &name) const noexcept {
    try {
        const FileDescriptor folder = openOwn(m_folder);
        if (const FileDescriptor locked = lock(folder.get())) {
            putRight(folder.get(), name);
        }
    } catch (const FileError &) {
        // Nothing has been installed here yet, or it is somebody else's: the next install says so.
    }
}

} // namespace platform::desktop
