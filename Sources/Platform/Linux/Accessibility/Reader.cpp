// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Accessibility/Reader.h"

#include <algorithm>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
// The main thread must not stand still for 300 ms in all; the rest is for what it does itself.
constexpr auto budgetWindow = 1s;
constexpr std::chrono::microseconds budgetSize = 230ms;
} // namespace

std::chrono::microseconds WaitBudget::left() {
    const auto windowStart = Clock::now() - budgetWindow;
    while (!m_waits.empty() && m_waits.front().at < windowStart) {
        m_waits.pop_front();
    }
    auto left = budgetSize;
    for (const auto &wait : m_waits) {
        left -= wait.length;
    }
    return std::max(left, std::chrono::microseconds(0));
}

void WaitBudget::spend(Clock::time_point from, Clock::time_point to) {
    m_waits.push_back({to, std::chrono::duration_cast<std::chrono::microseconds>(to - from)});
}

Reader::Reader(std::string sessionBusAddress, qint32 ownPid) : m_wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    m_thread = std::jthread([this, address = std::move(sessionBusAddress), ownPid](const std::stop_token &stop) {
        run(stop, address, ownPid);
    });
}

Reader::~Reader() {
    m_thread.request_stop();
    wake();
    m_thread.join();
    close(m_wakeUp);
}

void Reader::post(std::function<void(Session &)> work) {
    {
        const std::scoped_lock lock(m_mutex);
        m_jobs.push_back(std::move(work));
    }
    wake();
}

void Reader::wake() const {
    eventfd_write(m_wakeUp, 1);
}

std::deque<std::function<void(Session &)>> Reader::takeJobs() {
    eventfd_t count = 0;
    eventfd_read(m_wakeUp, &count);
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_jobs, {});
}

void Reader::run(const std::stop_token &stop, std::string sessionBusAddress, qint32 ownPid) {
    Session session(std::move(sessionBusAddress), ownPid, m_board);
    while (!stop.stop_requested()) {
        for (const auto &job : takeJobs()) {
            job(session);
        }
        session.process();
        waitForActivity(session);
    }
}

void Reader::waitForActivity(const Session &session) const {
    std::vector<pollfd> activities{{m_wakeUp, POLLIN, 0}};
    auto until = session.nextWake();
    for (auto *bus : session.buses()) {
        const int events = sd_bus_get_events(bus);
        activities.push_back({sd_bus_get_fd(bus), static_cast<short>(std::max(events, 0)), 0});
        std::uint64_t due = 0;
        if (sd_bus_get_timeout(bus, &due) >= 0 && due != static_cast<std::uint64_t>(-1)) {
            // The library counts on the same monotonic clock, in microseconds.
            until = std::min(until, Clock::time_point(std::chrono::microseconds(due)));
        }
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
    poll(activities.data(), activities.size(), static_cast<int>(std::clamp<long long>(left, 0, 60'000)));
}

} // namespace platform::desktop::atspi
