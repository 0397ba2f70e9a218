// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/MainQueue.h"

#include <condition_variable>
#include <map>
#include <mutex>

namespace quillory::test {

/// A main queue whose time the test owns: nothing runs and no time passes but by its own controls.
class SimulatedMainQueue final : public platform::MainQueue {
  public:
    void post(std::function<void()> work) override { postAfter(std::chrono::milliseconds(0), std::move(work)); }
    void postAfter(std::chrono::milliseconds delay, std::function<void()> work) override;
    [[nodiscard]] platform::RegistrationHandle repeat(std::chrono::milliseconds interval,
                                                      std::function<void()> work) override;
    [[nodiscard]] platform::Instant now() const override;

    /// Lets time pass and runs what falls due, in order, each at its own instant.
    void advance(std::chrono::milliseconds time);
    /// Runs what is due, without letting time pass, until the condition holds; waits for other threads to post. False
    /// when it does not hold after ten seconds of real time.
    [[nodiscard]] bool runUntil(const std::function<bool()> &condition);

  private:
    void beat(std::chrono::milliseconds interval, const std::weak_ptr<std::function<void()>> &work);
    bool runNext(std::chrono::milliseconds until);

    mutable std::mutex m_mutex;
    std::condition_variable m_added;
    /// By the time when it is due; works of one time stay in order.
    std::multimap<std::chrono::milliseconds, std::function<void()>> m_work;
    std::chrono::milliseconds m_now{0};
};

} // namespace quillory::test
