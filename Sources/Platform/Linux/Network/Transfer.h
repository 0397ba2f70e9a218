// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/URLSession.h"

#include <condition_variable>
#include <mutex>

namespace platform::desktop {

/// One exchange, shared by the thread that reads the answer and the network worker that fills it. Between the two
/// stands a buffer of bounded size, so that a slow reader slows the server down.
class Transfer {
  public:
    /// maxBody: the longest body that is taken, in bytes.
    Transfer(URLRequest request, qint64 maxBody) : m_request(std::move(request)), m_maxBody(maxBody) {}

    [[nodiscard]] const URLRequest &request() const { return m_request; }

    // The worker's side.

    enum class Taken { yes, noRoom, tooMuch };
    /// The head is in; without a status the answer is not HTTP.
    void headArrived(std::optional<int> status);
    /// Takes the next bytes of the body whole, or none of them.
    [[nodiscard]] Taken take(QByteArrayView bytes);
    /// The exchange is over, with a sentence about the failure if it failed.
    void finish(const std::optional<QString> &failure);

    // The reader's side.

    /// Ends all waiting with CancellationError, now and later. From any thread, never waits for the network.
    void cancel();
    /// Waits for the head.
    [[nodiscard]] std::optional<int> awaitHead();
    struct More {
        QByteArray bytes;
        /// The worker stopped for lack of room and must be told that there is some.
        bool wasFull = false;
    };
    /// Waits for more of the body; absent at its end.
    [[nodiscard]] std::optional<More> awaitBytes();

  private:
    void throwIfFailed() const;

    const URLRequest m_request;
    const qint64 m_maxBody;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    QByteArray m_buffer;
    qint64 m_bodySize = 0;
    std::optional<int> m_status;
    std::optional<QString> m_failure;
    bool m_headArrived = false;
    bool m_full = false;
    bool m_finished = false;
    bool m_cancelled = false;
};

} // namespace platform::desktop
