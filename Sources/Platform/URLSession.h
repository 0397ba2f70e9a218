// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <utility>
#include <vector>

namespace platform {

struct URLRequest {
    QUrl url;
    QByteArray method = "GET";
    std::vector<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;
    /// The longest wait for the next data of the response, not a limit on the whole exchange.
    std::chrono::milliseconds timeout{60'000};
    /// The longest time for all of it, each address that is gone to; without an end by default.
    std::chrono::milliseconds longestTime{0};
    /// The longest body that is taken, in bytes.
    qint64 longestBody = 16 << 20;
    /// Goes where the server points to, a few times at most and only while every address on the way is safe. Of no
    /// effect on a stream.
    bool followsRedirects = false;
};

/// Whether the address names this very computer: 127.0.0.0/8, [::1] or "localhost". What goes there never travels.
[[nodiscard]] bool isLoopback(const QUrl &url);

/// Whether nobody can read or change on its way what goes to the address and comes back: https, or this computer.
[[nodiscard]] bool isSafe(const QUrl &url);

/// The transport failed: no connection, time-out, broken transfer, an answer beyond all bounds. The text is fit for a
/// user's eyes and holds neither header nor body.
class URLError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The task was asked to stop. Not a failure.
class CancellationError : public std::exception {
  public:
    [[nodiscard]] const char *what() const noexcept override { return "cancelled"; }
};

/// A response whose body is read while it arrives. One thread at a time. Destroying it ends the exchange without
/// waiting; the connection is closed at once when the stop token asked for the end, and else may linger for a second.
class URLByteStream {
  public:
    virtual ~URLByteStream() = default;
    /// The HTTP status; absent when the answer was not HTTP.
    [[nodiscard]] virtual std::optional<int> statusCode() const = 0;
    /// Waits for the next line of the body, without its line break (LF, CR LF or CR); absent at the end. Throws
    /// URLError, or CancellationError as soon as the request's stop token asks for it.
    virtual std::optional<QByteArray> nextLine() = 0;
};

struct URLResponse {
    /// Absent when the answer was not HTTP.
    std::optional<int> statusCode;
    QByteArray body;
};

/// What the names of downloaded files begin with.
inline constexpr auto downloadName = "quillory-download-";

/// Told how many bytes have come, and how many are to come where that is known.
using DownloadProgress = std::function<void(qint64 received, std::optional<qint64> expected)>;

/// Sends HTTP requests. The operations block the calling thread, which is never the main one; any number of threads
/// may call at once. Connections are kept alive between requests.
class URLSession {
  public:
    virtual ~URLSession() = default;
    /// Sends a request and returns once the head of the response is in. Throws URLError or CancellationError.
    [[nodiscard]] virtual std::unique_ptr<URLByteStream> bytes(const URLRequest &request, std::stop_token stop) = 0;
    /// Sends a request and returns the whole response. Throws URLError or CancellationError.
    [[nodiscard]] virtual URLResponse data(const URLRequest &request, std::stop_token stop) = 0;
    /// Sends a request and puts the body of the response, whatever its status, into a new temporary file, which is the
    /// caller's to remove. Gives the file's path. Throws URLError, also when the file cannot be written, or
    /// CancellationError; there is no file then.
    [[nodiscard]] virtual QString download(const URLRequest &request, const DownloadProgress &progress,
                                           std::stop_token stop) = 0;
};

} // namespace platform
