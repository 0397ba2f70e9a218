// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/FileSystem.h"
#include "Platform/Linux/FileDescriptor.h"
#include "Platform/Linux/Updates/Manifest.h"

#include <fcntl.h>
#include <functional>
#include <span>

/// Folders with what is in them, named below an open folder, so that nobody can put another in its place on the way.
/// No symbolic link is ever followed. What fails throws FileError.
namespace platform::desktop::fileTree {

/// Throws FileError: what could not be done, and the reason that the system gave last.
[[noreturn]] void fail(const QString &what);
/// Throws FileError unless the result of a call is 0 or more.
template <typename Result> Result checked(Result result, const QString &what) {
    if (result < 0) {
        fail(what);
    }
    return result;
}

[[nodiscard]] FileDescriptor openFolder(const QString &path);
/// Opens a file or folder below a folder; names with "/" are opened folder by folder.
[[nodiscard]] FileDescriptor openBelow(int folder, const QByteArray &path, int flags = O_RDONLY);
/// Reads to the end; the function gets each piece.
void readAll(int file, const std::function<void(std::span<const char>)> &take);
void writeAll(int file, std::span<const char> bytes);
/// The content of a plain file, absent when there is none or it is larger.
[[nodiscard]] std::optional<QByteArray> content(int folder, const char *name, qint64 largest);

/// Everything below a folder, in order of path, without the digests. Throws for what is neither file nor folder, for a
/// file with a second name, and beyond all bounds.
[[nodiscard]] std::vector<BundleEntry> list(int folder);
/// SHA-256 of a file, in lower-case hexadecimal digits; the function hears the size of each piece.
[[nodiscard]] QByteArray digestOf(int folder, const QByteArray &path,
                                  const std::function<void(std::size_t)> &onPiece = {});
/// Removes a file, or a folder with all that is in it. False when something is left.
bool remove(int parent, const char *name) noexcept;

} // namespace platform::desktop::fileTree
