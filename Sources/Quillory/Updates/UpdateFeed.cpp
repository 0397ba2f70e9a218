// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Updates/UpdateFeed.h"

#include "Platform/URLSession.h"
#include "Quillory/RewriteError.h"

#include <nlohmann/json.hpp>

namespace quillory {

namespace {
/// A string member; absent when it is missing or of another type.
std::optional<QString> feedText(const nlohmann::json &object, const char *member) {
    const auto found = object.find(member);
    if (found == object.end() || !found->is_string()) {
        return std::nullopt;
    }
    return QString::fromStdString(found->get_ref<const std::string &>());
}

nlohmann::json parsedFeed(const QByteArray &json) {
    constexpr int deepest = 64;
    bool isTooDeep = false;
    const auto watchDepth = [&isTooDeep](int depth, nlohmann::json::parse_event_t, nlohmann::json &) {
        isTooDeep = isTooDeep || depth > deepest;
        return depth <= deepest;
    };
    nlohmann::json feed = nlohmann::json::parse(json.begin(), json.end(), watchDepth, /*allow_exceptions=*/false);
    if (feed.is_discarded() || isTooDeep) {
        throw RewriteError::badResponse(QStringLiteral("The version feed is not in the correct format."));
    }
    return feed;
}
} // namespace

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
    const nlohmann::json feed = parsedFeed(json);
    const auto version = feed.is_object() ? feedText(feed, "version") : std::nullopt;
    const auto address = feed.is_object() ? feedText(feed, "url") : std::nullopt;
    const QUrl url(address.value_or(QString()), QUrl::StrictMode);
    if (!version || url.isEmpty() || !url.isValid()) {
        throw RewriteError::badResponse(QStringLiteral("bad version feed"));
    }
    return {*version, url, feedText(feed, "notes").value_or(QString())};
}

} // namespace quillory
