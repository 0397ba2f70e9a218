// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/ArchiveUnpacker.h"

#include "Platform/Linux/Updates/Manifest.h"
#include "Platform/URLSession.h"

#include <QFile>
#include <QFileInfo>

#include <archive.h>
#include <archive_entry.h>

#include <memory>
#include <set>
#include <sys/statvfs.h>

namespace platform::desktop {

namespace {
constexpr std::size_t blockSize = 128 * 1024;
constexpr qint64 freeOfRatio = 1 << 20;
constexpr mode_t fileMode = 0644;
constexpr mode_t folderMode = 0755;
constexpr mode_t executableBits = 0111;
constexpr mode_t specialBits = 07000;

[[noreturn]] void refuse(const QString &why) {
    throw UnpackError((QStringLiteral("the archive ") + why).toStdString());
}

/// Warnings are errors here: to libarchive, a wrong checksum or a failed write is only a warning.
void check(la_ssize_t result, archive *from) {
    if (result < ARCHIVE_OK) {
        const char *const words = archive_error_string(from);
        refuse(QStringLiteral("could not be unpacked: ") +
               QString::fromLocal8Bit(words == nullptr ? "it is damaged" : words));
    }
}

using ArchiveHandle = std::unique_ptr<archive, decltype([](archive *opened) { archive_free(opened); })>;

struct Item {
    QByteArray path;
    bool isFolder = false;
    mode_t mode = 0;
    /// According to the archive.
    qint64 size = 0;
};

/// An archive that is read from its beginning.
class Reader {
  public:
    explicit Reader(const QString &path) {
        // Only by the directory at its end. The streaming reader would take a piece of an archive for a whole one.
        archive_read_support_format_zip_seekable(get());
        check(archive_read_open_filename(get(), QFile::encodeName(path).constData(), blockSize), get());
    }
    [[nodiscard]] archive *get() const { return m_archive.get(); }
    /// The next item; absent at the end. Throws for an item that must not be unpacked.
    std::optional<Item> next() {
        const int result = archive_read_next_header(get(), &m_entry);
        if (result == ARCHIVE_EOF) {
            return std::nullopt;
        }
        check(result, get());
        return checkedItem();
    }

  private:
    [[nodiscard]] Item checkedItem() const {
        const auto type = archive_entry_filetype(m_entry);
        const mode_t mode = archive_entry_perm(m_entry);
        const bool isLink = archive_entry_hardlink(m_entry) != nullptr || archive_entry_symlink(m_entry) != nullptr;
        if (isLink || (type != AE_IFREG && type != AE_IFDIR)) {
            refuse(QStringLiteral("holds something that is neither a file nor a folder"));
        }
        if ((mode & specialBits) != 0) {
            refuse(QStringLiteral("holds a file that would run as another user"));
        }
        if (archive_entry_is_encrypted(m_entry) != 0) {
            refuse(QStringLiteral("is encrypted"));
        }
        // Other compression methods may need hundreds of megabytes of memory.
        const QByteArray form(archive_format_name(get()));
        if (!form.contains("(deflation)") && !form.contains("(uncompressed)")) {
            refuse(QStringLiteral("uses a compression method that updates do not use"));
        }
        QByteArray path(archive_entry_pathname(m_entry));
        const bool isFolder = type == AE_IFDIR;
        if (isFolder && path.endsWith('/')) {
            path.chop(1);
        }
        if (!isSafePath(path)) {
            refuse(QStringLiteral("holds a name that leads out of the folder or cannot be displayed"));
        }
        const mode_t fileBits = fileMode | ((mode & executableBits) != 0 ? executableBits : 0);
        return {path, isFolder, isFolder ? folderMode : fileBits, archive_entry_size(m_entry)};
    }

    ArchiveHandle m_archive{archive_read_new()};
    archive_entry *m_entry = nullptr;
};

/// The names in one archive. Two names that a person or a careless file system could mix up are an attack.
class Names {
  public:
    void add(const Item &item) {
        const qsizetype slash = item.path.lastIndexOf('/');
        if (slash > 0) {
            addFolder(item.path.first(slash));
        }
        if (item.isFolder) {
            addFolder(item.path);
        } else if (!m_alike.insert(alike(item.path)).second) {
            refuse(QStringLiteral("holds two names that are the same or look the same"));
        }
    }
    /// Parents come before their children.
    [[nodiscard]] const std::set<QByteArray> &folders() const { return m_folders; }

  private:
    void addFolder(const QByteArray &path) {
        if (m_folders.contains(path)) {
            return;
        }
        add({path, false, 0, 0});
        m_folders.insert(path);
    }
    static QString alike(const QByteArray &path) {
        return QString::fromUtf8(path).toCaseFolded().normalized(QString::NormalizationForm_KC).toCaseFolded();
    }

    std::set<QString> m_alike;
    std::set<QByteArray> m_folders;
};

/// Checks the whole archive before anything is written, and returns its names.
Names checkedNames(const QString &path, const QString &folder, qint64 mostBytes, int mostEntries) {
    Reader reader(path);
    Names names;
    qint64 total = 0;
    int count = 0;
    while (const std::optional<Item> item = reader.next()) {
        total += item->size;
        if (item->size < 0 || total > mostBytes || ++count > mostEntries) {
            refuse(QStringLiteral("unpacks to more than an application may hold"));
        }
        names.add(*item);
    }
    struct statvfs space {};
    const bool isKnown = ::statvfs(QFile::encodeName(folder).constData(), &space) == 0;
    if (isKnown &&
        static_cast<double>(space.f_bavail) * static_cast<double>(space.f_frsize) < static_cast<double>(total)) {
        refuse(QStringLiteral("unpacks to more than the disk has room for"));
    }
    return names;
}

/// Writes files and folders into a folder.
class Writer {
  public:
    explicit Writer(const QString &folder) : m_prefix(QFile::encodeName(QFileInfo(folder).canonicalFilePath()) + '/') {
        archive_write_disk_set_options(get(), ARCHIVE_EXTRACT_SECURE_SYMLINKS | ARCHIVE_EXTRACT_SECURE_NODOTDOT |
                                                  ARCHIVE_EXTRACT_NO_OVERWRITE | ARCHIVE_EXTRACT_PERM);
    }
    void begin(const Item &item) {
        const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(archive_entry_new(),
                                                                                  &archive_entry_free);
        archive_entry_set_pathname(entry.get(), (m_prefix + item.path).constData());
        archive_entry_set_filetype(entry.get(), item.isFolder ? AE_IFDIR : AE_IFREG);
        archive_entry_set_perm(entry.get(), item.mode);
        check(archive_write_header(get(), entry.get()), get());
    }
    void write(const void *bytes, std::size_t size, qint64 offset) {
        check(archive_write_data_block(get(), bytes, size, offset), get());
    }
    void end() { check(archive_write_finish_entry(get()), get()); }
    void close() { check(archive_write_close(get()), get()); }

  private:
    [[nodiscard]] archive *get() const { return m_archive.get(); }

    ArchiveHandle m_archive{archive_write_disk_new()};
    QByteArray m_prefix;
};

/// Copies the data of the reader's current item. Returns its size.
qint64 copyData(const Reader &reader, Writer &writer, qint64 mostBytes, const std::stop_token &stop) {
    const void *bytes = nullptr;
    std::size_t size = 0;
    la_int64_t offset = 0;
    qint64 written = 0;
    for (;;) {
        if (stop.stop_requested()) {
            throw CancellationError();
        }
        const int result = archive_read_data_block(reader.get(), &bytes, &size, &offset);
        if (result == ARCHIVE_EOF) {
            return written;
        }
        check(result, reader.get());
        written += static_cast<qint64>(size);
        if (written > mostBytes) {
            refuse(QStringLiteral("unpacks to more than it says"));
        }
        writer.write(bytes, size, offset);
    }
}
} // namespace

void unpackZip(const QString &archive, const QString &folder, const std::stop_token &stop, const UnpackLimits &limits) {
    const qint64 ratioBound = freeOfRatio + QFileInfo(archive).size() * limits.largestRatio;
    const qint64 mostBytes = std::min(limits.mostBytes, ratioBound);
    const Names names = checkedNames(archive, folder, mostBytes, limits.mostEntries);
    Writer writer(folder);
    for (const QByteArray &path : names.folders()) {
        writer.begin({path, true, folderMode, 0});
        writer.end();
    }
    Reader reader(archive);
    qint64 left = mostBytes;
    while (const std::optional<Item> item = reader.next()) {
        if (!item->isFolder) {
            writer.begin(*item);
            left -= copyData(reader, writer, left, stop);
            writer.end();
        }
    }
    writer.close();
}

} // namespace platform::desktop
