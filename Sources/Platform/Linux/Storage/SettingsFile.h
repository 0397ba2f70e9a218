// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/FileDescriptor.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>
#include <sys/stat.h>

namespace platform::desktop {

/// Tells one state of a file from the next without reading it.
struct FileStamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    /// Nanoseconds since 1970.
    qint64 modified = 0;
    friend bool operator==(const FileStamp &, const FileStamp &) = default;
};

/// The settings file as bytes: read whole, replaced as a whole. The file, its temporary file and its lock can be read
/// by their owner alone. Has no state but its paths; any thread.
class SettingsFile {
  public:
    /// The folder is made when it is first locked.
    explicit SettingsFile(const QString &folder);

    [[nodiscard]] const QString &path() const { return m_path; }
    /// What the file looks like now, links followed; absent when there is none.
    [[nodiscard]] std::optional<FileStamp> stamp() const;
    /// Whether its owner has made it read-only. It is then left alone, though it could be replaced.
    [[nodiscard]] bool isReadOnly() const;

    struct Content {
        enum class State {
            absent,
            readable,
            /// Larger than any settings are.
            tooLarge,
            /// There, but not for us: no permission, or not a regular file.
            unreadable,
        };
        State state = State::absent;
        QByteArray bytes;
        std::optional<FileStamp> stamp;
    };
    [[nodiscard]] Content read() const;

    /// Keeps other writers out while it lives, so that reading, changing and replacing the file is one step.
    class Lock {
      public:
        /// Waits for another writer, at most this long; false when the lock can't be had.
        Lock(const SettingsFile &file, std::chrono::milliseconds longestWait);
        explicit operator bool() const { return static_cast<bool>(m_descriptor); }

      private:
        FileDescriptor m_descriptor;
    };
    /// Replaces the content so that every reader, even after a crash, finds the whole old or the whole new one. A
    /// symbolic link stays, and its target is replaced. Absent on failure; the old content then stays.
    [[nodiscard]] std::optional<FileStamp> replace(const QByteArray &bytes, const Lock &lock) const;
    /// Renames the file to "<name>.broken-<time>" and returns the new path; absent on failure.
    [[nodiscard]] std::optional<QString> moveAside(const Lock &lock) const;

  private:
    QString m_folder;
    QString m_path;
};

} // namespace platform::desktop
