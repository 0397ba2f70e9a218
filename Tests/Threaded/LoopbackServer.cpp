// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Threaded/LoopbackServer.h"

#include <arpa/inet.h>
#include <array>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace quillory::test {

namespace {
sockaddr_in addressOf(int socket) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr *>(&address), &length);
    return address;
}

int listenSomewhere() {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 || listen(listener, 64) != 0) {
        throw std::runtime_error("cannot listen on the loopback address");
    }
    return listener;
}
} // namespace

QByteArray answerWith(const QByteArray &status, const QByteArray &body) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

bool LoopbackConnection::receive() {
    std::array<char, 65536> buffer{};
    const ssize_t count = recv(m_socket, buffer.data(), buffer.size(), 0);
    if (count > 0) {
        m_received.append(buffer.data(), count);
    }
    return count > 0;
}

QByteArray LoopbackConnection::readRequest() {
    qsizetype headEnd = -1;
    while ((headEnd = m_received.indexOf("\r\n\r\n")) < 0) {
        if (!receive()) {
            return {};
        }
    }
    const QByteArray length = "content-length:";
    const QByteArray head = m_received.first(headEnd).toLower();
    const qsizetype at = head.indexOf(length);
    const qsizetype body = at < 0 ? 0 : head.sliced(at + length.size()).split('\r').front().trimmed().toLongLong();
    const qsizetype size = headEnd + 4 + body;
    while (m_received.size() < size) {
        if (!receive()) {
            return {};
        }
    }
    const QByteArray request = m_received.first(size);
    m_received.remove(0, size);
    return request;
}

bool LoopbackConnection::send(const QByteArray &bytes) {
    qsizetype sent = 0;
    while (sent < bytes.size()) {
        const auto left = static_cast<std::size_t>(bytes.size() - sent);
        const ssize_t count = ::send(m_socket, bytes.constData() + sent, left, MSG_NOSIGNAL);
        if (count <= 0) {
            return false;
        }
        sent += count;
    }
    return true;
}

bool LoopbackConnection::sendChunk(const QByteArray &bytes) {
    return send(QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n");
}

bool LoopbackConnection::awaitClosed() {
    pollfd waiting{.fd = m_socket, .events = POLLIN, .revents = 0};
    constexpr int patience = 10'000;
    while (poll(&waiting, 1, patience) > 0) {
        if (!receive()) {
            return true;
        }
    }
    return false;
}

LoopbackServer::LoopbackServer(Handler handler)
    : m_handler(std::move(handler)), m_listener(listenSomewhere()), m_acceptor([this] { acceptAll(); }) {}

LoopbackServer::~LoopbackServer() {
    shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    {
        const std::scoped_lock lock(m_mutex);
        for (const int connection : m_sockets) {
            shutdown(connection, SHUT_RDWR);
        }
    }
    for (std::thread &thread : m_threads) {
        thread.join();
    }
    for (const int connection : m_sockets) {
        close(connection);
    }
    close(m_listener);
}

QUrl LoopbackServer::url() const {
    return QUrl(QStringLiteral("http://127.0.0.1:%1/path?query").arg(ntohs(addressOf(m_listener).sin_port)));
}

void LoopbackServer::acceptAll() {
    for (;;) {
        const int accepted = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (accepted < 0) {
            return;
        }
        const int on = 1;
        setsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        const std::scoped_lock lock(m_mutex);
        m_sockets.push_back(accepted);
        m_threads.emplace_back([this, accepted, number = m_count++] {
            LoopbackConnection connection(accepted, number);
            m_handler(connection);
            shutdown(accepted, SHUT_RDWR);
        });
    }
}

} // namespace quillory::test
