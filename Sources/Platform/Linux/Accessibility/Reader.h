// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Linux/Accessibility/Session.h"

#include <condition_variable>
#include <deque>
#include <thread>

namespace platform::desktop::atspi {

/// Bounds what the main thread waits for answers, all waits of about a second together, whatever hangs.
class WaitBudget {
  public:
    /// How long a wait may last now.
    [[nodiscard]] std::chrono::microseconds left();
    void spend(Clock::time_point from, Clock::time_point to);

  private:
    struct Wait {
        Clock::time_point at;
        std::chrono::microseconds length;
    };
    std::deque<Wait> m_waits;
};

/// The thread that talks to the accessibility bus. Other threads hand it jobs; who waits for one waits for a bounded
/// time, and a job that was given up ends on its own and is lost on nobody.
class Reader {
  public:
    Reader(std::string sessionBusAddress, qint32 ownPid);
    ~Reader();
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;

    /// Does the work on the reader's thread. Its result, or nothing if that took longer than the limit or than what
    /// the budget has left. One thread, the main thread, asks.
    template <class Work> auto ask(std::chrono::microseconds limit, Work work) {
        using Result = std::invoke_result_t<Work, Session &>;
        auto job = std::make_shared<Pending<Result>>();
        post([job, work = std::move(work)](Session &session) {
            if (job->isGivenUp) {
                return;
            }
            Result result = work(session);
            const std::scoped_lock lock(job->mutex);
            job->result = std::move(result);
            job->isDone.notify_one();
        });
        const auto start = Clock::now();
        std::unique_lock lock(job->mutex);
        job->isDone.wait_for(lock, std::min(limit, m_budget.left()), [&] { return job->result.has_value(); });
        m_budget.spend(start, Clock::now());
        job->isGivenUp = !job->result.has_value();
        return std::move(job->result);
    }
    /// Does the work on the reader's thread, some time.
    void post(std::function<void(Session &)> work);

    [[nodiscard]] const Board &board() const { return m_board; }

  private:
    template <class Result> struct Pending {
        std::mutex mutex;
        std::condition_variable isDone;
        std::optional<Result> result;
        std::atomic<bool> isGivenUp = false;
    };

    void run(const std::stop_token &stop, std::string sessionBusAddress, qint32 ownPid);
    [[nodiscard]] std::deque<std::function<void(Session &)>> takeJobs();
    void waitForActivity(const Session &session) const;
    void wake() const;

    Board m_board;
    WaitBudget m_budget;
    std::mutex m_mutex;
    std::deque<std::function<void(Session &)>> m_jobs;
    int m_wakeUp = -1;
    std::jthread m_thread;
};

} // namespace platform::desktop::atspi
