// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/LifeToken.h"
#include "Platform/MainQueue.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <vector>

namespace quillory {

/// The time between two attempts.
inline constexpr std::chrono::milliseconds retryInterval{20};

/// What came of one attempt at an action.
enum class Attempt { succeeded, retry, failed };

/// One step of something that takes a while on the main thread.
struct Action {
    std::function<Attempt()> attempt;
    /// Waited before the first attempt.
    std::chrono::milliseconds pause{0};
    /// How many more attempts may follow the first.
    std::int64_t retries = 0;
    /// The outcome once the retries are used up.
    Attempt afterLastRetry = Attempt::failed;
};

/// Runs actions one after the other on the main queue, without blocking it, until all have succeeded or one has
/// failed. Actions without a pause follow each other at once. Destroying the sequence ends it silently. Main thread
/// only.
class ActionSequence {
  public:
    /// The queue outlives this.
    explicit ActionSequence(platform::MainQueue &queue) : m_queue(queue) {}
    /// Starts the actions; earlier ones must have ended. done: called at the end, and may call run() again.
    void run(std::vector<Action> actions, std::function<void(bool succeeded)> done);

  private:
    void proceed();
    void continueAfter(std::chrono::milliseconds delay);
    void end(bool succeeded);

    platform::MainQueue &m_queue;
    std::vector<Action> m_actions;
    std::size_t m_next = 0;
    std::function<void(bool)> m_done;
    platform::LifeToken m_life;
};

} // namespace quillory
