// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Reader/Session.h"

#include <condition_variable>
#include <deque>
#include <thread>

namespace platform::desktop::atspi {

/// Bounds the sum of the main thread's waits for answers within about a second, whatever hangs.
class WaitBudget {
  public:
    /// How long a wait may last at present.
    [[nodiscard]] std::chrono::microseconds left();
    void spend(Clock::time_point from, Clock::time_point to);

  private:
    struct Wait {
        Clock::time_point at;
        std::chrono::microseconds length;
    };
    std::deque<Wait> m_waits;
};

/// The thread that talks to the accessibility bus. The main thread hands it jobs and waits for them for a bounded time;
/// a job that nobody waits for any more ends on its own.
class Reader {
  public:
    Reader(std::string sessionBusAddress, qint32 ownPid);
    ~Reader();
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;

    /// Work on the reader's thread that somebody may wait for.
    template <class Result> struct Job {
        [[nodiscard]] bool isFinished() {
            const std::scoped_lock lock(mutex);
            return isDone;
        }

        std::mutex mutex;
        std::condition_variable finished;
        std::optional<Result> result;
        bool isDone = false;
        std::atomic<bool> isGivenUp = false;
    };

    /// Brief jobs are done in the pauses of a longer one.
    enum class Length { brief, longer };
    template <class Work> auto start(Work work, Length length = Length::brief) {
        using Result = std::invoke_result_t<Work, Session &>;
        auto job = std::make_shared<Job<Result>>();
        post(
            [job, work = std::move(work)](Session &session) {
                std::optional<Result> result;
                if (!job->isGivenUp) {
                    result = work(session);
                }
                const std::scoped_lock lock(job->mutex);
                job->result = std::move(result);
                job->isDone = true;
                job->finished.notify_one();
            },
            length);
        return job;
    }
    /// The job's result, or nothing if it takes longer than the limit or than what the budget has left. Main thread
    /// only.
    template <class Result> std::optional<Result> await(Job<Result> &job, std::chrono::microseconds limit) {
        const auto begin = Clock::now();
        std::unique_lock lock(job.mutex);
        job.finished.wait_for(lock, std::min(limit, m_budget.left()), [&] { return job.isDone; });
        m_budget.spend(begin, Clock::now());
        return std::exchange(job.result, std::nullopt);
    }
    /// Starts a job and awaits it; one that has not begun in time is dropped.
    template <class Work> auto ask(std::chrono::microseconds limit, Work work) {
        const auto job = start(std::move(work));
        auto result = await(*job, limit);
        job->isGivenUp = !result.has_value();
        return result;
    }
    /// Does the work on the reader's thread, when it comes to it.
    void post(std::function<void(Session &)> work, Length length = Length::brief);

    [[nodiscard]] const Board &board() const { return m_board; }

  private:
    void run(std::string sessionBusAddress, qint32 ownPid);
    void doBriefJobs(Session &session);
    void doLongJob(Session &session);
    void wake() const;

    Board m_board;
    WaitBudget m_budget;
    std::mutex m_mutex;
    using Jobs = std::deque<std::function<void(Session &)>>;
    Jobs m_jobs;
    Jobs m_longJobs;
    FileDescriptor m_wakeUp;
    StopSignal m_stop;
    std::jthread m_thread;
};

} // namespace platform::desktop::atspi
