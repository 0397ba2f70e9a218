// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/URLSession.h"

#include <condition_variable>
#include <mutex>

namespace platform::desktop {

/// One exchange, shared by the thread that reads the answer and the network worker that fills it. Between the two
/// stands a buffer of bounded size, so that a slow reader slows the server down.
class Transfer {
  public:
    explicit Transfer(URLRequest request) : m_request(std::move(request)) {}

    [[nodiscard]] const URLRequest &request() const { return m_request; }

    // The worker's side.

    enum class Taken { yes, noRoom, tooMuch };
    struct Head {
        /// Absent when the answer is not HTTP.
        std::optional<int> status;
        /// The announced length of the body.
        std::optional<qint64> length;
        /// Whether it has a Location header.
        bool hasLocation = false;
    };
    void headArrived(const Head &head);
    /// The answer is a redirect to this address. To be called before finish().
    void pointTo(const QUrl &url);
    /// Takes all of the next bytes of the body, or none.
    [[nodiscard]] Taken take(QByteArrayView bytes);
    /// The exchange has ended, with a sentence about the failure if it failed.
    void finish(const std::optional<QString> &failure);

    // The reader's side.

    /// Ends every wait, current and later, with CancellationError. Any thread; never waits for the network.
    void cancel();
    /// Waits for the head.
    [[nodiscard]] Head awaitHead();
    /// Where the answer redirects to, once it has been read to its end.
    [[nodiscard]] std::optional<QUrl> redirect() const;
    struct More {
        QByteArray bytes;
        /// Whether the worker paused because the buffer was full, and must be told that there is room.
        bool wasFull = false;
    };
    /// Waits for more of the body; absent at its end.
    [[nodiscard]] std::optional<More> awaitBytes();

  private:
    void throwIfFailed() const;

    const URLRequest m_request;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    QByteArray m_buffer;
    qint64 m_bodySize = 0;
    Head m_head;
    std::optional<QUrl> m_redirect;
    std::optional<QString> m_failure;
    bool m_headArrived = false;
    bool m_full = false;
    bool m_finished = false;
    bool m_cancelled = false;
};

} // namespace platform::desktop
