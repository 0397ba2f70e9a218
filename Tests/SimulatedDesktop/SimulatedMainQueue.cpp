// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "SimulatedDesktop/SimulatedMainQueue.h"

namespace quillory::test {

void SimulatedMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> work) {
    const std::scoped_lock lock(m_mutex);
    m_work.emplace(m_now + delay, std::move(work));
    m_added.notify_all();
}

platform::RegistrationHandle SimulatedMainQueue::repeat(std::chrono::milliseconds interval,
                                                        std::function<void()> work) {
    struct Repeating final : platform::Registration {
        std::shared_ptr<std::function<void()>> work;
    };
    auto repeating = std::make_unique<Repeating>();
    repeating->work = std::make_shared<std::function<void()>>(std::move(work));
    beat(interval, repeating->work);
    return repeating;
}

void SimulatedMainQueue::beat(std::chrono::milliseconds interval, const std::weak_ptr<std::function<void()>> &work) {
    postAfter(interval, [this, interval, work] {
        if (const auto registered = work.lock()) {
            beat(interval, work);
            (*registered)();
        }
    });
}

platform::Instant SimulatedMainQueue::now() const {
    const std::scoped_lock lock(m_mutex);
    return std::chrono::duration<double>(m_now).count();
}

void SimulatedMainQueue::advance(std::chrono::milliseconds time) {
    const auto until = m_now + time;
    while (runNext(until)) {
    }
    const std::scoped_lock lock(m_mutex);
    m_now = until;
}

bool SimulatedMainQueue::runUntil(const std::function<bool()> &condition) {
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

bool SimulatedMainQueue::runNext(std::chrono::milliseconds until) {
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

} // namespace quillory::test
