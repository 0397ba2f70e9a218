// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <vector>

namespace quillory {

/// How long after an attempt the next one follows.
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
    /// What it means when they are used up.
    Attempt whenTired = Attempt::failed;
};

/// Runs actions one after the other on the main queue, without blocking it, until all have succeeded or one has
/// failed; then tells how it ended. Actions that need no pause follow each other at once. Main thread only.
void runInOrder(std::vector<Action> actions, std::function<void(bool succeeded)> done);

} // namespace quillory
