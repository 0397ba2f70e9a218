// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Network/CurlErrors.h"

namespace platform::desktop {

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

} // namespace platform::desktop
