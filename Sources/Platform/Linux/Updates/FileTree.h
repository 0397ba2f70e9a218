// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/FileError.h"
#include "Platform/Linux/FileDescriptor.h"
#include "Platform/Linux/Updates/Manifest.h"

#include <fcntl.h>
#include <functional>
#include <span>

/// Reads and changes folders. Paths are relative to an open folder, so that no other process can swap a folder on the
/// way, and symbolic links are never followed. Failures throw FileError.
namespace platform::desktop::fileTree {

/// Throws FileError with what could not be done and the reason in errno.
[[noreturn]] void fail(const QString &what);
/// The result of a system call; throws FileError when it is negative.
template <typename Result> Result checked(Result result, const QString &what) {
    if (result < 0) {
        fail(what);
    }
    return result;
}

[[nodiscard]] FileDescriptor openFolder(const QString &path);
/// Opens a file or folder below a folder, one component of its path after the other. A file that is made by it is its
/// owner's alone.
[[nodiscard]] FileDescriptor openBelow(int folder, const QByteArray &path, int flags = O_RDONLY);
/// Reads to the end and hands each piece to the function.
void readAll(int file, const std::function<void(std::span<const char>)> &take);
void writeAll(int file, std::span<const char> bytes);
/// The content of a regular file; absent when there is none, or when it is larger than allowed.
[[nodiscard]] std::optional<QByteArray> content(int folder, const char *name, qint64 largest);

/// Everything below a folder, sorted by path, without digests. Throws for anything but files and folders, for a file
/// with a second hard link, and for too many or too deep entries.
[[nodiscard]] std::vector<BundleEntry> list(int folder);
/// SHA-256 of a file in lower-case hexadecimal digits. The function is told the size of each piece that was read.
[[nodiscard]] QByteArray digestOf(int folder, const QByteArray &path,
                                  const std::function<void(std::size_t)> &onPiece = {});
/// Removes a file, or a folder and everything in it. What cannot be removed stays.
void remove(int parent, const QByteArray &name) noexcept;

} // namespace platform::desktop::fileTree
