// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Storage/SettingsFile.h"

#include "Platform/Linux/Folders.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>

namespace platform::desktop {

namespace {
/// Settings with a long profile and hundreds of FAQ entries take some hundred kilobytes.
constexpr off_t largestFile = 8 << 20;
constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
constexpr mode_t ownersAll = S_IRWXU;
constexpr mode_t othersToo = S_IRWXG | S_IRWXO;

FileStamp stampOf(const struct stat &status) {
    constexpr qint64 nanosecondsPerSecond = 1'000'000'000;
    return {status.st_dev, status.st_ino, status.st_size,
            status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec};
}

FileDescriptor opened(const QString &path, int flags) {
    return FileDescriptor(::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC, ownerOnly));
}

/// Where a chain of symbolic links ends, whether there is a file or not; absent for a loop.
std::optional<QString> linkTarget(QString path) {
    constexpr int mostLinks = 40; // as the kernel has it
    for (int i = 0; i < mostLinks; ++i) {
        const QFileInfo info(path);
        if (!info.isSymbolicLink()) {
            return path;
        }
        path = info.symLinkTarget();
    }
    return std::nullopt;
}
} // namespace

SettingsFile::SettingsFile(const QString &folder)
    : m_folder(folder), m_path(folder + QStringLiteral("/settings.json")) {}

std::optional<FileStamp> SettingsFile::stamp() const {
    struct stat status {};
    if (::stat(QFile::encodeName(m_path).constData(), &status) != 0) {
        return std::nullopt;
    }
    return stampOf(status);
}

bool SettingsFile::isReadOnly() const {
    struct stat status {};
    return ::stat(QFile::encodeName(m_path).constData(), &status) == 0 && (status.st_mode & S_IWUSR) == 0;
}

SettingsFile::Content SettingsFile::read() const {
    // Does not wait for a writer, should it be a pipe.
    const FileDescriptor file = opened(m_path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!file) {
        const bool isAbsent = errno == ENOENT || errno == ENOTDIR;
        return {isAbsent ? Content::State::absent : Content::State::unreadable, {}, stamp()};
    }
    struct stat status {};
    if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return {Content::State::unreadable, {}, stampOf(status)};
    }
    if (status.st_size > largestFile) {
        return {Content::State::tooLarge, {}, stampOf(status)};
    }
    if ((status.st_mode & othersToo) != 0) {
        ::fchmod(file.get(), status.st_mode & ownersAll); // the key may be in it
    }
    QFile reader;
    const bool isOpen = reader.open(file.get(), QIODevice::ReadOnly | QIODevice::Unbuffered);
    const QByteArray bytes = isOpen ? reader.read(status.st_size + 1) : QByteArray(); // one more if it is growing
    const bool isRead = isOpen && reader.error() == QFileDevice::NoError;
    return {isRead ? Content::State::readable : Content::State::unreadable, bytes, stampOf(status)};
}

SettingsFile::Lock::Lock(const SettingsFile &file, std::chrono::milliseconds longestWait) {
    folders::make(file.m_folder);
    FileDescriptor descriptor = opened(file.m_path + QStringLiteral(".lock"), O_RDWR | O_CREAT | O_NOFOLLOW);
    if (!descriptor) {
        return;
    }
    const auto giveUp = std::chrono::steady_clock::now() + longestWait;
    while (::flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || std::chrono::steady_clock::now() >= giveUp) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    m_descriptor = std::move(descriptor);
}

std::optional<FileStamp> SettingsFile::replace(const QByteArray &bytes, const Lock & /*lock*/) const {
    const std::optional<QString> target = linkTarget(m_path);
    if (!target || isReadOnly() || bytes.size() > largestFile) {
        return std::nullopt;
    }
    // Not with QSaveFile: that one leaves the key in a file of a random name when it is killed, makes its file readable
    // for others before it narrows that down, and takes a failed fsync for success.
    QFile file(*target + QStringLiteral(".new"));
    file.remove(); // what a writer left that was killed
    struct stat status {};
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner) ||
        file.write(bytes) != bytes.size() || !file.flush() || ::fsync(file.handle()) != 0 ||
        ::fstat(file.handle(), &status) != 0 ||
        ::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(*target).constData()) != 0) {
        QFile::remove(file.fileName()); // not file.remove(), which gives up when closing fails
        return std::nullopt;
    }
    if (const FileDescriptor folder = opened(QFileInfo(*target).path(), O_RDONLY | O_DIRECTORY)) {
        ::fsync(folder.get());
    }
    return stampOf(status);
}

std::optional<QString> SettingsFile::moveAside(const Lock & /*lock*/) const {
    const QString name =
        m_path + QStringLiteral(".broken-") + QDateTime::currentDateTimeUtc().toString(u"yyyyMMdd-HHmmss-zzz");
    if (isReadOnly() || QFileInfo::exists(name) ||
        ::rename(QFile::encodeName(m_path).constData(), QFile::encodeName(name).constData()) != 0) {
        return std::nullopt;
    }
    return name;
}

} // namespace platform::desktop
