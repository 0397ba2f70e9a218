// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/BundleInstaller.h"

#include "Platform/Linux/Folders.h"
#include "Platform/Linux/Updates/FileTree.h"
#include "Platform/Linux/Updates/ProgramTrial.h"
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
/// Long enough for a disk that has to spin up.
constexpr auto installPatience = std::chrono::seconds(15);

/// The name of a new bundle while it is copied, and of the old one while it is removed.
QByteArray newName(const QByteArray &name) {
    return '.' + name + ".new";
}

/// The name of the old bundle for an instant where names cannot be exchanged.
QByteArray previousName(const QByteArray &name) {
    return name + ".previous";
}

bool exists(int folder, const QByteArray &name) {
    struct stat status {};
    if (::fstatat(folder, name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
        return true;
    }
    if (errno != ENOENT) {
        fileTree::fail(QStringLiteral("%1 could not be examined").arg(QString::fromUtf8(name)));
    }
    return false;
}

bool isSame(int folder, const QByteArray &name, int opened) {
    struct stat named {};
    struct stat open {};
    return ::fstatat(folder, name.constData(), &named, AT_SYMLINK_NOFOLLOW) == 0 && ::fstat(opened, &open) == 0 &&
           named.st_ino == open.st_ino && named.st_dev == open.st_dev;
}

void sync(int file) {
    fileTree::checked(::fsync(file), QStringLiteral("The files could not be written to disk"));
}

/// The lock on the folder; empty when another process has it.
FileDescriptor lock(int folder) {
    const int opened = ::openat(folder, lockName, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    FileDescriptor file(fileTree::checked(opened, QStringLiteral("The folder of applications could not be locked")));
    return ::flock(file.get(), LOCK_EX | LOCK_NB) == 0 ? std::move(file) : FileDescriptor();
}

void throwIfStopped(const std::stop_token &stop) {
    if (stop.stop_requested()) {
        throw CancellationError();
    }
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
    const FileDescriptor copy = fileTree::openBelow(to, entry.path, O_WRONLY | O_CREAT | O_EXCL);
    fileTree::readAll(source.get(), [&](std::span<const char> piece) {
        throwIfStopped(stop);
        fileTree::writeAll(copy.get(), piece);
    });
    fileTree::checked(::fchmod(copy.get(), entry.mode & bundleMode), QStringLiteral("A mode could not be set"));
    ::sync_file_range(copy.get(), 0, 0, SYNC_FILE_RANGE_WRITE); // starts now, while the next file is copied
}

/// Copies a bundle into a new folder of that name and syncs it to disk. Returns the open copy.
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
        throwIfStopped(stop);
        sync(fileTree::openBelow(to.get(), entry.path).get());
    }
    sync(to.get());
    return to;
}

void rename(int folder, const QByteArray &from, const QByteArray &to) {
    fileTree::checked(::renameat(folder, from.constData(), folder, to.constData()),
                      QStringLiteral("%1 could not take its place").arg(QString::fromUtf8(to)));
}

/// Gives the name to the other bundle, and the other's name to the one that had it. Where names cannot be exchanged,
/// the one that had it becomes the previous one; there must not be one of that name yet.
void swap(int folder, const QByteArray &other, const QByteArray &name) {
    if (::renameat2(folder, other.constData(), folder, name.constData(), RENAME_EXCHANGE) == 0) {
        return;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        fileTree::fail(QStringLiteral("%1 could not take its place").arg(QString::fromUtf8(name)));
    }
    rename(folder, name, previousName(name));
    try {
        rename(folder, other, name);
    } catch (const FileError &) {
        rename(folder, previousName(name), name);
        throw;
    }
}

/// Gives the staged bundle the name, whether or not another bundle has it.
void putInPlace(int folder, const QByteArray &name) {
    if (exists(folder, name)) {
        swap(folder, newName(name), name);
    } else {
        rename(folder, newName(name), name);
    }
}

/// Gives the name back to the bundle that had it before.
void takeBack(int folder, const QByteArray &name) {
    const QByteArray staged = newName(name);
    if (exists(folder, previousName(name))) {
        fileTree::remove(folder, staged);
        rename(folder, name, staged);
        rename(folder, previousName(name), name);
    } else if (exists(folder, staged)) {
        swap(folder, staged, name);
    } else {
        rename(folder, name, staged); // no bundle had it
    }
}

/// Gives the name back to the bundle that was about to be replaced where names cannot be exchanged.
void giveNameBack(int folder, const QByteArray &name) {
    if (!exists(folder, name) && exists(folder, previousName(name))) {
        rename(folder, previousName(name), name);
        sync(folder);
    }
}

/// Leaves everything as it was before the install. When the old bundle cannot be given its name back, it throws and
/// removes nothing.
void undo(int folder, const QByteArray &name, bool isInPlace) {
    if (isInPlace) {
        takeBack(folder, name);
    }
    giveNameBack(folder, name);
    fileTree::remove(folder, newName(name));
    ::fsync(folder);
}

/// Removes the leftovers of installs. The bundle under the name must be genuine.
void removeOthers(int folder, const QByteArray &name) {
    fileTree::remove(folder, previousName(name));
    fileTree::remove(folder, newName(name));
}

bool hasOthers(int folder, const QByteArray &name) {
    return exists(folder, previousName(name)) || exists(folder, newName(name));
}
} // namespace

FileDescriptor BundleInstaller::openFolder() const {
    FileDescriptor folder = fileTree::openFolder(m_folder);
    folders::checkOwn(m_folder);
    return folder;
}

bool BundleInstaller::isGenuine(const QByteArray &name) const {
    return m_signing.signingInformation(m_folder + u'/' + QFile::decodeName(name), {}).has_value();
}

void BundleInstaller::restore(int folder, const QByteArray &name) const {
    giveNameBack(folder, name);
    if (!hasOthers(folder, name)) {
        return;
    }
    const QByteArray previous = previousName(name);
    const QByteArray staged = newName(name);
    if (exists(folder, name) && !isGenuine(name) &&
        (isGenuine(previous) || (!exists(folder, previous) && isGenuine(staged)))) {
        // It was changed just before the exchange, and the install was killed before it noticed.
        takeBack(folder, name);
        sync(folder);
    }
    // If none of them is genuine, all of them stay.
    if (!exists(folder, name) || isGenuine(name)) {
        removeOthers(folder, name);
    }
}

void BundleInstaller::install(const QString &found, const QByteArray &name, const Installation::Approval &approve,
                              const std::stop_token &stop) const {
    folders::make(m_folder);
    const FileDescriptor folder = openFolder();
    const FileDescriptor locked = lock(folder.get());
    if (!locked) {
        throw FileError("Another update is being installed.");
    }
    restore(folder.get(), name);
    const QByteArray staged = newName(name);
    fileTree::remove(folder.get(), staged);
    const QString prefix = m_folder + u'/';
    bool isInPlace = false;
    try {
        const FileDescriptor copy = stage(folder.get(), staged, found, stop);
        approve(prefix + QFile::decodeName(staged));
        if (!canStart(prefix + QFile::decodeName(staged), installPatience, stop)) {
            throw FileError("The new version does not start on this computer.");
        }
        putInPlace(folder.get(), name);
        isInPlace = true;
        sync(folder.get());
        // Another process may have changed it just before the exchange.
        approve(prefix + QFile::decodeName(name));
        if (!isSame(folder.get(), name, copy.get())) {
            throw FileError("Another program changed the files meanwhile.");
        }
    } catch (...) {
        undo(folder.get(), name, isInPlace);
        throw;
    }
    removeOthers(folder.get(), name);
}

void BundleInstaller::recover(const QByteArray &name) const noexcept {
    try {
        const FileDescriptor folder = openFolder();
        if (!hasOthers(folder.get(), name)) {
            return; // the usual case
        }
        if (const FileDescriptor locked = lock(folder.get())) {
            restore(folder.get(), name);
        }
    } catch (const FileError &) {
        // Nothing has been installed here yet, or the folder is not safe, which the next install reports.
    }
}

} // namespace platform::desktop
