// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "SimulatedDesktop/SimulatedMainQueue.h"

using namespace std::chrono_literals;

namespace quillory::test {

class SimulatedMainQueue::Repeating final : public platform::Registration {
  public:
    Repeating(SimulatedMainQueue &queue, std::chrono::milliseconds interval, std::function<void()> work)
        : m_queue(queue), m_interval(interval), m_work(std::move(work)) {
        schedule();
    }
    ~Repeating() override {
        const std::scoped_lock lock(m_queue.m_mutex);
        m_queue.m_work.erase(m_next);
    }
    Repeating(const Repeating &) = delete;
    Repeating &operator=(const Repeating &) = delete;

  private:
    void schedule() {
        m_next = m_queue.add(m_queue.m_now + m_interval, [this] {
            schedule();
            const auto work = m_work; // which may end this registration
            work();
        });
    }

    SimulatedMainQueue &m_queue;
    std::chrono::milliseconds m_interval;
    std::function<void()> m_work;
    Due m_next;
};

void SimulatedMainQueue::post(std::function<void()> work) {
    postAfter(0ms, std::move(work));
}

void SimulatedMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> work) {
    std::unique_lock lock(m_mutex);
    const auto at = m_now + delay;
    lock.unlock();
    add(at, std::move(work));
}

platform::RegistrationHandle SimulatedMainQueue::repeat(std::chrono::milliseconds interval,
                                                        std::function<void()> work) {
    return std::make_unique<Repeating>(*this, interval, std::move(work));
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
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (!condition()) {
        if (runNext(m_now)) {
            continue;
        }
        std::unique_lock lock(m_mutex);
        const auto isDue = [this] { return !m_work.empty() && m_work.begin()->first.first <= m_now; };
        if (!m_added.wait_until(lock, deadline, isDue)) {
            return false;
        }
    }
    return true;
}

SimulatedMainQueue::Due SimulatedMainQueue::add(std::chrono::milliseconds at, std::function<void()> work) {
    const std::scoped_lock lock(m_mutex);
    const Due due{at, m_count++};
    m_work.emplace(due, std::move(work));
    m_added.notify_all();
    return due;
}

bool SimulatedMainQueue::runNext(std::chrono::milliseconds until) {
    std::unique_lock lock(m_mutex);
    if (m_work.empty() || m_work.begin()->first.first > until) {
        return false;
    }
    const auto next = m_work.extract(m_work.begin());
    m_now = std::max(m_now, next.key().first);
    lock.unlock();
    next.mapped()();
    return true;
}

} // namespace quillory::test
