// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/FileDescriptor.h"

#include <QSocketNotifier>

#include <chrono>
#include <functional>
#include <memory>

namespace platform::desktop {

/// The one instance of the program, or of its set-up, on a display of this user. It holds a lock on a file in the
/// user's folder for run-time files and listens on a socket beside it. The kernel lets go of the lock when the process
/// ends, however it ends, and no other process has to answer: a session bus may be missing or hang, and displays of one
/// user (at the desk, over a remote desktop) may share it, while the keys that are grabbed and the cards that are shown
/// belong to a display. Main thread only.
class SingleInstance {
  public:
    /// What is limited to one instance.
    enum class Kind { program, setup };

    /// Becomes the display's instance; null when another process is. Where no lock file can be made at all, every
    /// process is taken for the only one.
    [[nodiscard]] static std::unique_ptr<SingleInstance> become(Kind kind = Kind::program);
    /// Whether a process is the display's instance. Does not wait.
    [[nodiscard]] static bool isThere(Kind kind = Kind::program);
    /// Asks the display's instance to come to the front, as a user wants who starts the program again. False when none
    /// answers in time.
    [[nodiscard]] static bool summon(std::chrono::milliseconds longestWait, Kind kind = Kind::program);

    ~SingleInstance();
    SingleInstance(const SingleInstance &) = delete;
    SingleInstance &operator=(const SingleInstance &) = delete;

    /// What to do when summoned. Until this is called a summons waits, for as long as its sender does. The application
    /// object must exist.
    void onSummons(std::function<void()> handler);

  private:
    explicit SingleInstance(FileDescriptor lock) : m_lock(std::move(lock)) {}
    void listen(const QByteArray &path);
    void answer();

    FileDescriptor m_lock;
    FileDescriptor m_socket;
    QByteArray m_socketPath;
    std::function<void()> m_summoned;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace platform::desktop
