// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Network/CurlURLSession.h"

#include "Platform/Linux/Network/LineSplitter.h"

#include <algorithm>
#include <functional>

namespace platform::desktop {

namespace {
constexpr qint64 maxBody = 16 * 1024 * 1024;
constexpr qsizetype maxLine = 1024 * 1024;

/// A line break in a header would end it and begin another one of the writer's choice.
bool canBeSent(QByteArrayView text) {
    return std::ranges::none_of(text, [](char byte) { return byte == '\r' || byte == '\n' || byte == '\0'; });
}

void check(const URLRequest &request) {
    const QString scheme = request.url.scheme();
    const bool isWeb = scheme == QLatin1StringView("https") || scheme == QLatin1StringView("http");
    if (!isWeb || request.url.host().isEmpty()) {
        throw URLError("The address is not a web address.");
    }
    for (const auto &[name, value] : request.headers) {
        if (!canBeSent(name) || !canBeSent(value)) {
            throw URLError("A header of the request holds a line break.");
        }
    }
}

/// The reader's end of one exchange. Ends it when destroyed: at once after a cancellation, otherwise so that its
/// connection may be kept.
class Reader {
  public:
    Reader(std::shared_ptr<WorkerMailbox> mailbox, const URLRequest &request, std::stop_token stop)
        : m_mailbox(std::move(mailbox)), m_transfer(std::make_shared<Transfer>(request, maxBody)),
          m_stop(std::move(stop)) {
        throwIfStopped();
        if (!m_mailbox->post(WorkerMailbox::Ask::start, m_transfer)) {
            throw URLError("The program is shutting down.");
        }
        m_onStop.emplace(m_stop, [mailbox = m_mailbox, transfer = m_transfer] {
            transfer->cancel();
            mailbox->post(WorkerMailbox::Ask::abort, transfer);
        });
    }
    ~Reader() {
        m_onStop.reset();
        m_mailbox->post(WorkerMailbox::Ask::drain, m_transfer);
    }
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;

    [[nodiscard]] std::optional<int> awaitHead() { return m_transfer->awaitHead(); }
    [[nodiscard]] std::optional<QByteArray> awaitBytes() {
        auto more = m_transfer->awaitBytes();
        if (!more) {
            return std::nullopt;
        }
        if (more->wasFull) {
            m_mailbox->post(WorkerMailbox::Ask::resume, m_transfer);
        }
        return std::move(more->bytes);
    }
    void throwIfStopped() const {
        if (m_stop.stop_requested()) {
            throw CancellationError();
        }
    }

  private:
    std::shared_ptr<WorkerMailbox> m_mailbox;
    std::shared_ptr<Transfer> m_transfer;
    std::stop_token m_stop;
    std::optional<std::stop_callback<std::function<void()>>> m_onStop;
};

class LineStream final : public URLByteStream {
  public:
    LineStream(std::shared_ptr<WorkerMailbox> mailbox, const URLRequest &request, std::stop_token stop)
        : m_reader(std::move(mailbox), request, std::move(stop)), m_status(m_reader.awaitHead()) {}

    [[nodiscard]] std::optional<int> statusCode() const override { return m_status; }
    std::optional<QByteArray> nextLine() override {
        for (;;) {
            m_reader.throwIfStopped();
            if (auto line = m_lines.next()) {
                checkLength(line->size());
                return line;
            }
            checkLength(m_lines.pending());
            if (m_isOver) {
                return std::nullopt;
            }
            readOn();
        }
    }

  private:
    static void checkLength(qsizetype length) {
        if (length > maxLine) {
            throw URLError("A line of the answer is too long.");
        }
    }
    void readOn() {
        if (const auto bytes = m_reader.awaitBytes()) {
            m_lines.feed(*bytes);
        } else {
            m_lines.end();
            m_isOver = true;
        }
    }

    Reader m_reader;
    std::optional<int> m_status;
    LineSplitter m_lines;
    bool m_isOver = false;
};
} // namespace

std::unique_ptr<URLByteStream> CurlURLSession::bytes(const URLRequest &request, std::stop_token stop) {
    check(request);
    return std::make_unique<LineStream>(mailbox(), request, std::move(stop));
}

URLResponse CurlURLSession::data(const URLRequest &request, std::stop_token stop) {
    check(request);
    Reader reader(mailbox(), request, std::move(stop));
    URLResponse response{.statusCode = reader.awaitHead(), .body = {}};
    while (const auto bytes = reader.awaitBytes()) {
        response.body.append(*bytes);
    }
    return response;
}

std::shared_ptr<WorkerMailbox> CurlURLSession::mailbox() {
    std::call_once(m_started, [this] { m_worker = std::make_unique<NetworkWorker>(); });
    return m_worker->mailbox();
}

} // namespace platform::desktop
