// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/Tasks.h"

#include <gmock/gmock.h>

#include <condition_variable>
#include <latch>
#include <mutex>

namespace quillory {

namespace {

void waitToBeStopped(const std::stop_token &stop) {
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    never.wait(lock, stop, [] { return false; });
}

TEST(Tasks, StopWhenAskedAndAreWaitedForAtTheEnd) {
    std::atomic<int> ended = 0;
    std::latch cancelled(1);
    {
        Tasks tasks;
        auto asked = tasks.start([&](const std::stop_token &stop) {
            waitToBeStopped(stop);
            ++ended;
            cancelled.count_down();
        });
        const auto running = tasks.start([&](const std::stop_token &stop) {
            waitToBeStopped(stop);
            ++ended;
        });
        ASSERT_TRUE(asked && running);
        asked->cancel();
        cancelled.wait();
        EXPECT_EQ(ended, 1) << "cancelling one leaves the other alone";
    }
    EXPECT_EQ(ended, 2);
}

TEST(Tasks, GoOnWithoutAHandleAndGiveTheirThreadsBack) {
    std::atomic<int> ended = 0;
    Tasks tasks;
    for (int i = 0; i < 200; ++i) {
        // The handle goes at once. Finished threads are joined by later starts, which races with their end.
        ASSERT_TRUE(tasks.start([&](const std::stop_token &) {
            ++ended;
            ended.notify_one();
        }));
        ended.wait(i);
    }
    EXPECT_EQ(ended, 200);
}

} // namespace

} // namespace quillory
