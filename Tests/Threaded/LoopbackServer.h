// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QUrl>

#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <functional>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace quillory::test {

using namespace Qt::StringLiterals;

/// The server's end of one connection, for a server that says exactly what a test wants said.
class LoopbackConnection {
  public:
    LoopbackConnection(int socket, int number) : m_socket(socket), m_number(number) {}

    /// Counted from 0 in the order of coming.
    [[nodiscard]] int number() const { return m_number; }
    /// The next request, head and body; empty once the client has closed.
    [[nodiscard]] QByteArray readRequest() {
        const QByteArray length = "content-length:";
        for (;;) {
            const qsizetype headEnd = m_received.indexOf("\r\n\r\n");
            const QByteArray head = m_received.first(std::max<qsizetype>(headEnd, 0)).toLower();
            const qsizetype at = head.indexOf(length);
            const qsizetype body =
                at < 0 ? 0 : head.sliced(at + length.size()).split('\r').front().trimmed().toLongLong();
            const qsizetype size = headEnd + 4 + body;
            if (headEnd >= 0 && m_received.size() >= size) {
                const QByteArray request = m_received.first(size);
                m_received.remove(0, size);
                return request;
            }
            if (!receive()) {
                return {};
            }
        }
    }
    /// False when the client has closed.
    bool send(const QByteArray &bytes) {
        for (QByteArrayView left = bytes; !left.isEmpty();) {
            const ssize_t count = ::send(m_socket, left.data(), static_cast<std::size_t>(left.size()), MSG_NOSIGNAL);
            if (count <= 0) {
                return false;
            }
            left = left.sliced(count);
        }
        return true;
    }
    /// Sends bytes as one chunk of a chunked body.
    bool sendChunk(const QByteArray &bytes) {
        return send(QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n");
    }
    /// Waits up to ten seconds for the client to close; false when it does not.
    [[nodiscard]] bool awaitClosed() {
        pollfd waiting{.fd = m_socket, .events = POLLIN, .revents = 0};
        while (poll(&waiting, 1, 10'000) > 0) {
            if (!receive()) {
                return true;
            }
        }
        return false;
    }

  private:
    bool receive() {
        std::array<char, 65536> buffer{};
        const ssize_t count = recv(m_socket, buffer.data(), buffer.size(), 0);
        m_received.append(buffer.data(), std::max<ssize_t>(count, 0));
        return count > 0;
    }

    int m_socket;
    int m_number;
    QByteArray m_received;
};

/// A server on the loopback address that runs a function on a thread for each connection, and closes it thereafter.
class LoopbackServer {
  public:
    using Handler = std::function<void(LoopbackConnection &)>;

    explicit LoopbackServer(Handler handler)
        : m_handler(std::move(handler)), m_listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in place{.sin_family = AF_INET, .sin_port = 0, .sin_addr = {htonl(INADDR_LOOPBACK)}, .sin_zero = {}};
        auto *const address = reinterpret_cast<sockaddr *>(&place);
        socklen_t length = sizeof place;
        if (bind(m_listener, address, length) != 0 || listen(m_listener, 64) != 0 ||
            getsockname(m_listener, address, &length) != 0) {
            throw std::runtime_error("cannot listen on the loopback address");
        }
        m_url = QUrl(u"http://127.0.0.1:%1/path?query"_s.arg(ntohs(place.sin_port)));
        m_acceptor = std::thread([this] { acceptAll(); });
    }
    /// Cuts all connections and waits for their functions.
    ~LoopbackServer() {
        shutdown(m_listener, SHUT_RDWR);
        m_acceptor.join();
        for (const int connection : m_sockets) {
            shutdown(connection, SHUT_RDWR);
        }
        for (std::thread &thread : m_threads) {
            thread.join();
        }
        for (const int connection : m_sockets) {
            close(connection);
        }
        close(m_listener);
    }
    LoopbackServer(const LoopbackServer &) = delete;
    LoopbackServer &operator=(const LoopbackServer &) = delete;

    [[nodiscard]] QUrl url() const { return m_url; }
    [[nodiscard]] int connectionCount() const { return m_count; }

  private:
    void acceptAll() {
        for (int accepted = 0; (accepted = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
            const int on = 1;
            setsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
            m_sockets.push_back(accepted);
            m_threads.emplace_back([this, accepted, number = m_count++] {
                LoopbackConnection connection(accepted, number);
                m_handler(connection);
                shutdown(accepted, SHUT_RDWR);
            });
        }
    }

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
[[nodiscard]] inline QByteArray answerWith(const QByteArray &status, const QByteArray &body) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

} // namespace quillory::test
