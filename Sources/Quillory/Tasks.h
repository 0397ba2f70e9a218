// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <stop_token>
#include <thread>

namespace quillory {

/// A handle on work that runs on a thread of its own. The work goes on without the handle.
class Task {
  public:
    explicit Task(std::stop_source stop) : m_stop(std::move(stop)) {}
    /// Asks the work to stop and returns at once.
    void cancel() { m_stop.request_stop(); }

  private:
    std::stop_source m_stop;
};

/// Owns the threads of such work. Main thread only.
class Tasks {
  public:
    /// Asks all work to stop, and waits until it has.
    ~Tasks();
    /// Runs the work on a thread of its own; it must not throw. Absent if the system cannot start a thread.
    [[nodiscard]] std::optional<Task> start(std::function<void(std::stop_token)> work);

  private:
    struct Running {
        std::atomic<bool> finished = false;
        std::jthread thread; // joined before the flag is destroyed
    };
    void reap();

    std::list<Running> m_running;
};

} // namespace quillory
