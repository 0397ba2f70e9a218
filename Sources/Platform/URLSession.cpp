// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/URLSession.h"

#include <QStringList>

#include <algorithm>

namespace platform {

namespace {
bool isByte(const QString &number) {
    constexpr uint largestByte = 255;
    bool isNumber = false;
    return number.toUInt(&isNumber) <= largestByte && isNumber;
}
} // namespace

bool isLoopback(const QUrl &url) {
    const QString host = url.host();
    if (host == QLatin1StringView("localhost") || host == QLatin1StringView("::1")) {
        return true;
    }
    const QStringList bytes = host.split(QLatin1Char('.'));
    return bytes.size() == 4 && bytes.front() == QLatin1StringView("127") && std::ranges::all_of(bytes, isByte);
}

bool isSafe(const QUrl &url) {
    return url.scheme() == QLatin1StringView("https") || (url.scheme() == QLatin1StringView("http") && isLoopback(url));
}

} // namespace platform
