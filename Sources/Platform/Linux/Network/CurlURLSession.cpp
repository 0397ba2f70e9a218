// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Network/CurlURLSession.h"

#include "Platform/FileError.h"
#include "Platform/Linux/Folders.h"
#include "Platform/Linux/Network/LineSplitter.h"

#include <QTemporaryFile>

#include <algorithm>
#include <array>
#include <functional>
#include <sys/file.h>

namespace platform::desktop {

namespace {
constexpr int mostRedirects = 5;
constexpr qsizetype maxLine = 1024 * 1024;

QString temporaryFolder() {
    try {
        return folders::temporary();
    } catch (const FileError &error) {
        throw URLError(error.what());
    }
}

/// A line break in a header would end it and begin another one.
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

} // namespace

/// The reader's end of one exchange. Destroying it ends the exchange: at once after a cancellation, otherwise so that
/// the connection can be kept.
class BodyReader {
  public:
    BodyReader(std::shared_ptr<WorkerMailbox> mailbox, const URLRequest &request, std::stop_token stop)
        : m_mailbox(std::move(mailbox)), m_transfer(std::make_shared<Transfer>(request)), m_stop(std::move(stop)) {
        throwIfStopped();
        if (!m_mailbox->post(WorkerMailbox::Ask::start, m_transfer)) {
            throw URLError("The program is shutting down.");
        }
        m_onStop.emplace(m_stop, [mailbox = m_mailbox, transfer = m_transfer] {
            transfer->cancel();
            mailbox->post(WorkerMailbox::Ask::abort, transfer);
        });
    }
    ~BodyReader() {
        m_onStop.reset();
        m_mailbox->post(WorkerMailbox::Ask::drain, m_transfer);
    }
    BodyReader(const BodyReader &) = delete;
    BodyReader &operator=(const BodyReader &) = delete;

    /// Waits for the head; returns at once if it is there.
    [[nodiscard]] Transfer::Head awaitHead() { return m_transfer->awaitHead(); }
    /// Where to go instead, if the request follows redirects. Reads the answer to its end in that case.
    [[nodiscard]] std::optional<QUrl> redirect() {
        constexpr std::array redirects{301, 302, 303, 307, 308};
        constexpr qsizetype longestExcuse = 64 * 1024;
        const Transfer::Head head = awaitHead();
        if (!m_transfer->request().followsRedirects || !head.hasLocation ||
            std::ranges::find(redirects, head.status) == redirects.end()) {
            return std::nullopt;
        }
        qsizetype size = 0;
        while (const auto bytes = awaitBytes()) {
            size += bytes->size();
            if (size > longestExcuse) {
                throw URLError("The answer is too long.");
            }
        }
        return m_transfer->redirect();
    }
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

namespace {
class LineStream final : public URLByteStream {
  public:
    LineStream(std::shared_ptr<WorkerMailbox> mailbox, const URLRequest &request, std::stop_token stop)
        : m_reader(std::move(mailbox), request, std::move(stop)), m_status(m_reader.awaitHead().status) {}

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

    BodyReader m_reader;
    std::optional<int> m_status;
    LineSplitter m_lines;
    bool m_isOver = false;
};
} // namespace

std::unique_ptr<URLByteStream> CurlURLSession::bytes(const URLRequest &request, std::stop_token stop) {
    check(request);
    return std::make_unique<LineStream>(mailbox(), request, std::move(stop));
}

/// Sends a request, follows redirects, and calls the function with the last answer once its head is there.
void CurlURLSession::exchange(URLRequest request, const std::stop_token &stop, const Receive &receive) {
    for (int redirects = 0; redirects <= mostRedirects; ++redirects) {
        check(request);
        if (request.followsRedirects && !isSafe(request.url)) {
            throw URLError("The address is not secure: it must begin with https://.");
        }
        BodyReader reader(mailbox(), request, stop);
        const std::optional<QUrl> next = reader.redirect();
        if (!next) {
            return receive(reader);
        }
        if (next->scheme() != request.url.scheme() && next->scheme() != QLatin1StringView("https")) {
            throw URLError("The server points to an address that is not secure.");
        }
        request.url = *next;
    }
    throw URLError("The server points from one address to the next without end.");
}

URLResponse CurlURLSession::data(const URLRequest &request, std::stop_token stop) {
    URLResponse response;
    exchange(request, stop, [&response](BodyReader &reader) {
        response.statusCode = reader.awaitHead().status;
        while (const auto bytes = reader.awaitBytes()) {
            response.body.append(*bytes);
        }
    });
    return response;
}

QString CurlURLSession::download(const URLRequest &request, const DownloadProgress &progress, std::stop_token stop) {
    QTemporaryFile file(temporaryFolder() + u'/' + QLatin1StringView(downloadName) + QStringLiteral("XXXXXX"));
    const auto failed = [&file] {
        throw URLError("The download could not be saved: " + file.errorString().toStdString() + '.');
    };
    if (!file.open()) {
        failed();
    }
    (void)::flock(file.handle(), LOCK_EX | LOCK_NB); // marks it as in use for those who clear up left-overs
    exchange(request, stop, [&](BodyReader &reader) {
        qint64 received = 0;
        while (const auto bytes = reader.awaitBytes()) {
            if (file.write(*bytes) != bytes->size()) {
                failed();
            }
            received += bytes->size();
            progress(received, reader.awaitHead().length);
        }
    });
    if (!file.flush()) {
        failed();
    }
    file.setAutoRemove(false);
    return file.fileName();
}

std::shared_ptr<WorkerMailbox> CurlURLSession::mailbox() {
    std::call_once(m_started, [this] { m_worker = std::make_unique<NetworkWorker>(); });
    return m_worker->mailbox();
}

} // namespace platform::desktop
