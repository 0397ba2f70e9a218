// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Reader/Reader.h"

#include <algorithm>
#include <sys/eventfd.h>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
// The main thread must not stand still for 300 ms in all; the rest is left for its own work.
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
    m_thread = std::jthread([this, address = std::move(sessionBusAddress), ownPid] { run(address, ownPid); });
}

Reader::~Reader() {
    m_stop.request();
    wake();
    m_thread.join();
}

void Reader::post(std::function<void(Session &)> work, Length length) {
    {
        const std::scoped_lock lock(m_mutex);
        (length == Length::brief ? m_jobs : m_longJobs).push_back(std::move(work));
    }
    wake();
}

void Reader::wake() const {
    eventfd_write(m_wakeUp.get(), 1);
}

void Reader::doBriefJobs(Session &session) {
    Jobs jobs;
    {
        const std::scoped_lock lock(m_mutex);
        jobs.swap(m_jobs);
    }
    for (const auto &job : jobs) {
        if (m_stop.isRequested()) {
            return;
        }
        job(session);
    }
}

void Reader::doLongJob(Session &session) {
    std::function<void(Session &)> job;
    {
        const std::scoped_lock lock(m_mutex);
        if (m_longJobs.empty()) {
            return;
        }
        job = std::move(m_longJobs.front());
        m_longJobs.pop_front();
        if (!m_longJobs.empty()) {
            wake();
        }
    }
    job(session);
}

void Reader::run(std::string sessionBusAddress, qint32 ownPid) {
    Session *current = nullptr;
    Session session(std::move(sessionBusAddress), ownPid, m_board, m_stop, [&] { doBriefJobs(*current); });
    current = &session;
    while (!m_stop.isRequested()) {
        eventfd_t count = 0;
        eventfd_read(m_wakeUp.get(), &count);
        doBriefJobs(session);
        doLongJob(session);
        session.process();
        waitForActivity(session.buses(), m_wakeUp.get(), session.nextWake());
    }
}

} // namespace platform::desktop::atspi
