// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <httplib.h>

#include <functional>
#include <string>
#include <thread>
#include <utility>

namespace quillory::bench {

/// A model service on the loopback address that answers every request in the same way.
class StreamingService {
  public:
    /// write: sends the pieces of one answer. Runs on a thread of the server, several at once for several requests.
    explicit StreamingService(std::function<void(httplib::DataSink &)> write) : m_write(std::move(write)) {
        m_server.Post("/api/v1/chat/completions", [this](const httplib::Request &, httplib::Response &response) {
            response.set_chunked_content_provider("text/event-stream", [this](std::size_t, httplib::DataSink &sink) {
                m_write(sink);
                sink.done();
                return true;
            });
        });
        m_port = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::jthread([this] { m_server.listen_after_bind(); });
    }
    ~StreamingService() { m_server.stop(); }
    StreamingService(const StreamingService &) = delete;
    StreamingService &operator=(const StreamingService &) = delete;

    [[nodiscard]] int port() const { return m_port; }

    static void sendPiece(httplib::DataSink &sink, const std::string &text) {
        const std::string event = R"(data: {"choices":[{"delta":{"content":")" + text + R"("}}]})" + "\n\n";
        sink.write(event.data(), event.size());
    }

  private:
    std::function<void(httplib::DataSink &)> m_write;
    httplib::Server m_server;
    int m_port = 0;
    std::jthread m_thread;
};

} // namespace quillory::bench
