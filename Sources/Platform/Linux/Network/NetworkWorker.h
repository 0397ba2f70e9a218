// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Network/Transfer.h"

#include <curl/curl.h>

#include <map>
#include <thread>

namespace platform::desktop {

/// Requests to the network worker, from any thread, at the cost of a lock held for an instant. Outlives the worker, for
/// readers that still hold a transfer.
class WorkerMailbox {
  public:
    enum class Ask {
        start,
        /// The reader's buffer has room again.
        resume,
        /// Closes the connection at once.
        abort,
        /// Nobody reads on. An answer that is nearly complete may run out, so that its connection can be used again.
        drain,
        quit,
    };
    using Message = std::pair<Ask, std::shared_ptr<Transfer>>;

    /// False when the worker has ended.
    bool post(Ask ask, std::shared_ptr<Transfer> transfer);
    [[nodiscard]] std::vector<Message> take();
    /// The handle to wake; null once the worker has ended.
    void connect(CURLM *multi);

  private:
    std::mutex m_mutex;
    std::vector<Message> m_messages;
    CURLM *m_multi = nullptr;
};

/// The thread that does all network work, on one curl multi handle and so with one pool of kept-alive connections.
/// Whatever in curl may block (ending a name look-up, a handshake) blocks nobody but this thread.
class NetworkWorker {
  public:
    NetworkWorker();
    /// Ends every exchange that still runs with URLError.
    ~NetworkWorker();
    NetworkWorker(const NetworkWorker &) = delete;
    NetworkWorker &operator=(const NetworkWorker &) = delete;

    [[nodiscard]] const std::shared_ptr<WorkerMailbox> &mailbox() const { return m_mailbox; }

  private:
    struct Exchange;
    using Clock = std::chrono::steady_clock;

    void run();
    [[nodiscard]] bool handleMessages();
    void start(const std::shared_ptr<Transfer> &transfer);
    void resume(Exchange &exchange);
    void drain(Exchange &exchange);
    void collectFinished();
    void endOverdue();
    [[nodiscard]] int pollTimeout() const;
    void end(Exchange &exchange, const std::optional<QString> &failure);

    std::shared_ptr<WorkerMailbox> m_mailbox = std::make_shared<WorkerMailbox>();
    CURLM *m_multi;
    std::map<const Transfer *, std::unique_ptr<Exchange>> m_exchanges;
    std::thread m_thread;
};

} // namespace platform::desktop
