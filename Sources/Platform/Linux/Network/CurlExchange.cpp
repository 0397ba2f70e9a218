// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Network/CurlExchange.h"

namespace platform::desktop {

namespace {
/// For the whole head, including interim answers and trailers.
constexpr qsizetype maxHead = 256 * 1024;
/// No more than this is read just to keep a connection.
constexpr qsizetype maxDrained = 64 * 1024;

QString headTooLong() {
    return QStringLiteral("The head of the answer is too long.");
}

QString bodyTooLong() {
    return QStringLiteral("The answer is too long.");
}

QByteArrayView viewOf(const char *data, std::size_t size, std::size_t count) {
    return {data, static_cast<qsizetype>(size * count)};
}
} // namespace

QString sentenceFor(CURLcode code) {
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return QStringLiteral("The server could not be found. Check the network connection.");
    case CURLE_COULDNT_RESOLVE_PROXY:
        return QStringLiteral("The proxy server could not be found.");
    case CURLE_COULDNT_CONNECT:
        return QStringLiteral("Could not connect to the server.");
    case CURLE_OPERATION_TIMEDOUT:
        return QStringLiteral("The request timed out.");
    case CURLE_PEER_FAILED_VERIFICATION:
        return QStringLiteral("The server's certificate could not be verified.");
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CIPHER:
    case CURLE_USE_SSL_FAILED:
        return QStringLiteral("A secure connection to the server could not be made.");
    case CURLE_SSL_CACERT_BADFILE:
        return QStringLiteral("The system's list of trusted certificates could not be read.");
    case CURLE_GOT_NOTHING:
        return QStringLiteral("The server closed the connection without an answer.");
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
        return QStringLiteral("The connection to the server was lost.");
    case CURLE_URL_MALFORMAT:
    case CURLE_UNSUPPORTED_PROTOCOL:
        return QStringLiteral("The address is not a web address.");
    default:
        // Curl's own words for the code, which never contain anything of the request.
        return QStringLiteral("The request failed: %1.").arg(QString::fromUtf8(curl_easy_strerror(code)));
    }
}

CurlExchange::CurlExchange(std::shared_ptr<Transfer> exchanged) : transfer(std::move(exchanged)) {
    setRequest();
    setLimits();
    setCallbacks();
}

template <typename Value> void CurlExchange::set(CURLoption option, Value value) {
    curl_easy_setopt(handle(), option, value);
}

void CurlExchange::setRequest() {
    const URLRequest &request = transfer->request();
    set(CURLOPT_URL, request.url.toEncoded(QUrl::RemoveFragment).constData());
    set(CURLOPT_USERAGENT, "Quillory");
    if (request.method != "GET") {
        set(CURLOPT_POST, 1L);
        set(CURLOPT_CUSTOMREQUEST, request.method.constData());
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
        // Not copied: the transfer outlives this handle.
        set(CURLOPT_POSTFIELDS, request.body.constData());
    }
    for (const auto &[name, value] : request.headers) {
        // Curl's way of sending a header without a value.
        addHeader(value.isEmpty() ? name + ';' : name + ": " + value);
    }
    // Otherwise curl sends a long body only after an interim answer.
    addHeader("Expect:");
    set(CURLOPT_HTTPHEADER, m_headers.get());
    if (isLoopback(request.url)) {
        set(CURLOPT_PROXY, "");
    }
}

void CurlExchange::setLimits() {
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    // The usual variable, for a network whose owner signs every server's certificate.
    if (const QByteArray trusted = qgetenv("SSL_CERT_FILE"); !trusted.isEmpty()) {
        set(CURLOPT_CAINFO, trusted.constData());
        set(CURLOPT_CAPATH, static_cast<const char *>(nullptr));
    }
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_NOSIGNAL, 1L);
    // A cancelled name look-up ends by itself; otherwise the worker, and so all other exchanges, would wait for it.
    set(CURLOPT_QUICK_EXIT, 1L);
    // The worker's own deadline decides; this one makes curl leave time for a host's other addresses.
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(transfer->request().timeout.count()));
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(transfer->request().longestTime.count()));
}

void CurlExchange::setCallbacks() {
    using Function = std::size_t (*)(char *, std::size_t, std::size_t, void *);
    const Function onHeader = [](char *data, std::size_t size, std::size_t count, void *self) {
        return static_cast<CurlExchange *>(self)->headLine(viewOf(data, size, count));
    };
    const Function onBody = [](char *data, std::size_t size, std::size_t count, void *self) {
        return static_cast<CurlExchange *>(self)->body(viewOf(data, size, count));
    };
    set(CURLOPT_PRIVATE, this);
    set(CURLOPT_HEADERFUNCTION, onHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, onBody);
    set(CURLOPT_WRITEDATA, this);
}

void CurlExchange::addHeader(const QByteArray &header) {
    curl_slist *const longer = curl_slist_append(m_headers.get(), header.constData());
    (void)m_headers.release();
    m_headers.reset(longer);
}

/// One line of the head with its break; the empty line ends the head. An interim answer has a head of its own.
std::size_t CurlExchange::headLine(QByteArrayView line) {
    lastData = std::chrono::steady_clock::now();
    m_headSize += line.size();
    if (m_headSize > maxHead) {
        failure = headTooLong();
        return 0;
    }
    long status = 0;
    curl_easy_getinfo(handle(), CURLINFO_RESPONSE_CODE, &status);
    constexpr long firstFinalStatus = 200;
    if (!m_hasHead && line.trimmed().isEmpty() && status >= firstFinalStatus) {
        return headEnd(status) ? static_cast<std::size_t>(line.size()) : 0;
    }
    return static_cast<std::size_t>(line.size());
}

/// False when the announced body is too long.
bool CurlExchange::headEnd(long status) {
    m_hasHead = true;
    curl_off_t length = -1;
    curl_easy_getinfo(handle(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    if (length > transfer->request().longestBody) {
        failure = bodyTooLong();
        return false;
    }
    curl_header *location = nullptr;
    transfer->headArrived(
        {.status = static_cast<int>(status),
         .length = length < 0 ? std::nullopt : std::optional<qint64>(length),
         .hasLocation = curl_easy_header(handle(), "Location", 0, CURLH_HEADER, -1, &location) == CURLHE_OK});
    return true;
}

std::size_t CurlExchange::body(QByteArrayView bytes) {
    lastData = std::chrono::steady_clock::now();
    if (isDraining) {
        m_drained += bytes.size();
        return m_drained > maxDrained ? 0 : static_cast<std::size_t>(bytes.size());
    }
    switch (transfer->take(bytes)) {
    case Transfer::Taken::yes:
        return static_cast<std::size_t>(bytes.size());
    case Transfer::Taken::noRoom:
        isPaused = true;
        return CURL_WRITEFUNC_PAUSE;
    case Transfer::Taken::tooMuch:
        break;
    }
    failure = bodyTooLong();
    return 0;
}

std::optional<QString> CurlExchange::outcome(CURLcode result) {
    if (result == CURLE_OK) {
        const char *redirect = nullptr;
        curl_easy_getinfo(handle(), CURLINFO_REDIRECT_URL, &redirect);
        if (redirect != nullptr) {
            transfer->pointTo(QUrl(QString::fromUtf8(redirect)));
        }
        // Curl accepts a head that breaks off.
        return m_hasHead ? std::nullopt : std::optional(sentenceFor(CURLE_RECV_ERROR));
    }
    if (failure) {
        return failure;
    }
    if (result == CURLE_OUT_OF_MEMORY && !m_hasHead) {
        // Curl's code for a single header beyond its own limit.
        return headTooLong();
    }
    // The answer is not HTTP. (The scheme of the request was checked before.)
    const bool isNotHTTP = result == CURLE_UNSUPPORTED_PROTOCOL || result == CURLE_WEIRD_SERVER_REPLY;
    if (isNotHTTP && !m_hasHead) {
        transfer->headArrived({});
        return std::nullopt;
    }
    return sentenceFor(result);
}

} // namespace platform::desktop
