// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
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
    void postAfter(std::chrono::milliseconds delay, std::function<void()> work) override {
        const std::scoped_lock lock(m_mutex);
        m_work.emplace(m_now + delay, std::move(work));
        m_added.notify_all();
    }
    [[nodiscard]] platform::RegistrationHandle repeat(std::chrono::milliseconds interval,
                                                      std::function<void()> work) override {
        struct Repeating final : platform::Registration {
            std::shared_ptr<std::function<void()>> work;
        };
        auto repeating = std::make_unique<Repeating>();
        repeating->work = std::make_shared<std::function<void()>>(std::move(work));
        beat(interval, repeating->work);
        return repeating;
    }
    [[nodiscard]] platform::Instant now() const override {
        const std::scoped_lock lock(m_mutex);
        return std::chrono::duration<double>(m_now).count();
    }

    /// Lets time pass and runs what falls due, in order, each at its own instant.
    void advance(std::chrono::milliseconds time) {
        const auto until = m_now + time;
        while (runNext(until)) {
        }
        const std::scoped_lock lock(m_mutex);
        m_now = until;
    }
    /// Runs what is due, without letting time pass, until the condition holds; waits for other threads to post. False
    /// when it does not hold after ten seconds of real time.
    [[nodiscard]] bool runUntil(const std::function<bool()> &condition) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!condition()) {
            if (runNext(m_now)) {
                continue;
            }
            std::unique_lock lock(m_mutex);
            if (!m_added.wait_until(lock, deadline, [this] { return m_work.begin() != m_work.upper_bound(m_now); })) {
                return false;
            }
        }
        return true;
    }

  private:
    void beat(std::chrono::milliseconds interval, const std::weak_ptr<std::function<void()>> &work) {
        postAfter(interval, [this, interval, work] {
            if (const auto registered = work.lock()) {
                beat(interval, work);
                (*registered)();
            }
        });
    }
    bool runNext(std::chrono::milliseconds until) {
        std::unique_lock lock(m_mutex);
        if (m_work.begin() == m_work.upper_bound(until)) {
            return false;
        }
        const auto next = m_work.extract(m_work.begin());
        m_now = std::max(m_now, next.key());
        lock.unlock();
        next.mapped()();
        return true;
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_added;
    /// By the time when it is due; works of one time stay in order.
    std::multimap<std::chrono::milliseconds, std::function<void()>> m_work;
    std::chrono::milliseconds m_now{0};
};

} // namespace quillory::test
