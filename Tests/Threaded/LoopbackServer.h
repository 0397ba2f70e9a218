// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <QByteArray>
#include <QUrl>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace quillory::test {

/// The server's end of one connection, for a server that says exactly what a test wants said.
class LoopbackConnection {
  public:
    LoopbackConnection(int socket, int number) : m_socket(socket), m_number(number) {}

    /// Counted from 0 in the order of coming.
    [[nodiscard]] int number() const { return m_number; }
    /// The next request, head and body; empty once the client has closed.
    [[nodiscard]] QByteArray readRequest();
    /// False when the client has closed.
    bool send(const QByteArray &bytes);
    /// Sends bytes as one chunk of a chunked body.
    bool sendChunk(const QByteArray &bytes);
    /// Waits up to ten seconds for the client to close; false when it does not.
    [[nodiscard]] bool awaitClosed();

  private:
    bool receive();

    int m_socket;
    int m_number;
    QByteArray m_received;
};

/// A server on the loopback address that runs a function on a thread for each connection, and closes it thereafter.
class LoopbackServer {
  public:
    using Handler = std::function<void(LoopbackConnection &)>;
    explicit LoopbackServer(Handler handler);
    /// Cuts all connections and waits for their functions.
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer &) = delete;
    LoopbackServer &operator=(const LoopbackServer &) = delete;

    [[nodiscard]] QUrl url() const { return m_url; }
    [[nodiscard]] int connectionCount() const { return m_count; }

  private:
    void acceptAll();

    Handler m_handler;
    int m_listener;
    QUrl m_url;
    std::atomic<int> m_count = 0;
    std::vector<int> m_sockets;
    std::vector<std::thread> m_threads;
    std::thread m_acceptor;
};

/// The head of an answer with a chunked body.
inline const QByteArray chunkedHead = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
/// A whole answer.
[[nodiscard]] QByteArray answerWith(const QByteArray &status, const QByteArray &body);

} // namespace quillory::test
