// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Updates/UpdateFeed.h"

#include "Platform/URLSession.h"
#include "Quillory/RewriteError.h"

#include <QJsonDocument>
#include <QJsonValue>

namespace quillory {

QUrl feedURL(const platform::Process &process) {
    const auto variable = process.environment(QStringLiteral("QUILLORY_UPDATE_FEED"));
    const QString host =
        process.infoDictionaryString(QStringLiteral("UpdateFeedHost")).value_or(QStringLiteral(QUILLORY_UPDATE_HOST));
    const bool isOverridden = variable && !variable->isEmpty();
    const QUrl base(isOverridden ? *variable : QStringLiteral("https://") + host, QUrl::StrictMode);
    if (!platform::isSafe(base) || base.host().isEmpty() || !base.userInfo().isEmpty()) {
        throw RewriteError::badResponse(QStringLiteral(
            "The address of the version feed must begin with https:// (or with http:// for this computer itself)."));
    }
    QUrl url;
    url.setScheme(base.scheme());
    url.setHost(base.host());
    url.setPort(base.port());
    url.setPath(QStringLiteral("/version.json"));
    return url;
}

UpdateFeed updateFeedFromJSON(const QByteArray &json) {
    const QJsonDocument feed = QJsonDocument::fromJson(json);
    if (feed.isNull()) {
        throw RewriteError::badResponse(QStringLiteral("The version feed is not in the correct format."));
    }
    const QJsonValue version = feed[QStringLiteral("version")];
    const QUrl url(feed[QStringLiteral("url")].toString(), QUrl::StrictMode);
    if (!version.isString() || url.isEmpty() || !url.isValid()) {
        throw RewriteError::badResponse(QStringLiteral("bad version feed"));
    }
    return {version.toString(), url, feed[QStringLiteral("notes")].toString()};
}

} // namespace quillory
