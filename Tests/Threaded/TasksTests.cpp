// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Tasks.h"

#include <gmock/gmock.h>

#include <condition_variable>
#include <mutex>

namespace quillory {
namespace {

TEST(Tasks, StopWhenAskedAndAreWaitedForAtTheEnd) {
    std::atomic<int> ended = 0;
    const auto untilStopped = [&ended](const std::stop_token &stop) {
        std::mutex mutex;
        std::condition_variable_any never;
        std::unique_lock lock(mutex);
        never.wait(lock, stop, [] { return false; });
        ++ended;
        ended.notify_all();
    };
    {
        Tasks tasks;
        auto asked = tasks.start(untilStopped);
        const auto running = tasks.start(untilStopped);
        ASSERT_TRUE(asked && running);
        asked->cancel();
        ended.wait(0);
        EXPECT_EQ(ended, 1) << "cancelling one leaves the other alone";
    }
    EXPECT_EQ(ended, 2);
}

} // namespace
} // namespace quillory
