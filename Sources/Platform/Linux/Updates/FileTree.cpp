// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/FileTree.h"

#include <QFile>

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::desktop::fileTree {

namespace {
constexpr std::size_t mostEntries = 20'000;
constexpr int deepestFolder = 32;
constexpr std::size_t pieceSize = 128 * 1024;
constexpr mode_t modeBits = 07777;

/// For functions that take no open folder. An absolute name stays as it is.
std::filesystem::path pathBelow(int folder, const QByteArray &name) {
    return std::filesystem::path("/proc/self/fd") / std::to_string(folder) / name.constData();
}

/// The names in an open folder, of which more than there may be are not all read.
std::vector<QByteArray> namesIn(int folder) {
    std::vector<QByteArray> names;
    std::error_code error;
    std::filesystem::directory_iterator found(pathBelow(folder, {}), error);
    for (; !error && found != end(found) && names.size() <= mostEntries; found.increment(error)) {
        names.emplace_back(found->path().filename().c_str());
    }
    if (error) {
        errno = error.value();
        fail(QStringLiteral("A folder could not be read"));
    }
    return names;
}

class Lister {
  public:
    std::vector<BundleEntry> entries;

    void add(int folder, const QByteArray &prefix, int depth) {
        for (const QByteArray &name : namesIn(folder)) {
            addOne(folder, name, prefix + name, depth);
        }
    }

  private:
    void addOne(int folder, const QByteArray &name, const QByteArray &path, int depth) {
        struct stat status {};
        checked(::fstatat(folder, name.constData(), &status, AT_SYMLINK_NOFOLLOW),
                QStringLiteral("A file could not be read"));
        const bool isFolder = S_ISDIR(status.st_mode);
        if (entries.size() >= mostEntries || depth > deepestFolder ||
            (!isFolder && (!S_ISREG(status.st_mode) || status.st_nlink != 1))) {
            errno = EINVAL;
            fail(QStringLiteral("A folder holds something that does not belong there"));
        }
        entries.push_back({path, isFolder, status.st_mode & modeBits, isFolder ? 0 : status.st_size, {}});
        if (isFolder) {
            add(openBelow(folder, name, O_RDONLY | O_DIRECTORY).get(), path + '/', depth + 1);
        }
    }
};
} // namespace

void fail(const QString &what) {
    throw FileError((what + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errno)) + u'.').toStdString());
}

FileDescriptor openFolder(const QString &path) {
    const int folder = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    return FileDescriptor(checked(folder, QStringLiteral("The folder %1 could not be opened").arg(path)));
}

FileDescriptor openBelow(int folder, const QByteArray &path, int flags) {
    const qsizetype slash = path.indexOf('/');
    if (slash >= 0) {
        const FileDescriptor next = openBelow(folder, path.first(slash), O_RDONLY | O_DIRECTORY);
        return openBelow(next.get(), path.sliced(slash + 1), flags);
    }
    // O_NONBLOCK, because a pipe in the file's place would wait for a writer.
    const int opened =
        ::openat(folder, path.constData(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, S_IRUSR | S_IWUSR);
    const auto done = (flags & O_CREAT) != 0 ? QStringLiteral("made") : QStringLiteral("opened");
    return FileDescriptor(checked(opened, QStringLiteral("%1 could not be %2").arg(QString::fromUtf8(path), done)));
}

void readAll(int file, const std::function<void(std::span<const char>)> &take) {
    const auto buffer = std::make_unique<std::array<char, pieceSize>>();
    for (;;) {
        const ssize_t count = ::read(file, buffer->data(), buffer->size());
        if (count == 0) {
            return;
        }
        if (count > 0) {
            take(std::span<const char>(buffer->data(), static_cast<std::size_t>(count)));
        } else if (errno != EINTR) {
            fail(QStringLiteral("A file could not be read"));
        }
    }
}

void writeAll(int file, std::span<const char> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            fail(QStringLiteral("A file could not be written"));
        }
        bytes = bytes.subspan(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
}

std::optional<QByteArray> content(int folder, const char *name, qint64 largest) {
    struct stat status {};
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size > largest) {
        return std::nullopt;
    }
    QByteArray bytes;
    readAll(openBelow(folder, name).get(), [&](std::span<const char> piece) {
        if (bytes.size() <= largest) {
            bytes.append(piece.data(), static_cast<qsizetype>(piece.size()));
        }
    });
    return bytes.size() <= largest ? std::optional(bytes) : std::nullopt;
}

std::vector<BundleEntry> list(int folder) {
    Lister lister;
    lister.add(folder, {}, 0);
    std::ranges::sort(lister.entries, {}, &BundleEntry::path);
    return std::move(lister.entries);
}

QByteArray digestOf(int folder, const QByteArray &path, const std::function<void(std::size_t)> &onPiece) {
    const FileDescriptor file = openBelow(folder, path);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> digest(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    bool isGood = EVP_DigestInit_ex(digest.get(), EVP_sha256(), nullptr) == 1;
    readAll(file.get(), [&](std::span<const char> piece) {
        isGood = isGood && EVP_DigestUpdate(digest.get(), piece.data(), piece.size()) == 1;
        if (onPiece) {
            onPiece(piece.size());
        }
    });
    QByteArray bytes(EVP_MAX_MD_SIZE, '\0');
    unsigned int size = 0;
    isGood = isGood && EVP_DigestFinal_ex(digest.get(), reinterpret_cast<unsigned char *>(bytes.data()), &size) == 1;
    if (!isGood) {
        throw FileError("A digest could not be computed.");
    }
    return bytes.first(size).toHex();
}

void remove(int parent, const QByteArray &name) noexcept {
    std::error_code ignored;
    std::filesystem::remove_all(pathBelow(parent, name), ignored);
}

} // namespace platform::desktop::fileTree
