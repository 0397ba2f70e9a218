// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// What the kernel says about processes. Nothing here waits; for a process that is gone or belongs to another user the
/// answers are absent or empty.
namespace platform::desktop::processes {

/// Tells a process from a later one with the same identifier, and from itself before it became another program.
struct Fingerprint {
    /// Clock ticks since the machine started.
    quint64 startTime = 0;
    /// The path of the executable as the kernel has it; empty when it may not be seen.
    QString executable;
    qint32 parent = 0;
    friend bool operator==(const Fingerprint &, const Fingerprint &) = default;
};
[[nodiscard]] std::optional<Fingerprint> fingerprint(qint32 pid);

/// The path of an executable without the mark that the kernel adds when an update has replaced the file.
[[nodiscard]] QString withoutDeletedMark(const QString &path);
[[nodiscard]] QString fileName(const QString &path);

/// The names that a program may be known by, the most reliable first: Flatpak and Snap names, the path and the name of
/// its executable, the name it was started as, the script that an interpreter runs, the desktop entry it was started
/// from.
[[nodiscard]] QStringList names(qint32 pid, const Fingerprint &process);

/// Whether an executable only serves its parent: the page processes of web views, and sandboxes.
[[nodiscard]] bool isHelper(const QString &executable);

} // namespace platform::desktop::processes
