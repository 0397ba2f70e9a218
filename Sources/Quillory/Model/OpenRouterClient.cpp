// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Model/OpenRouterClient.h"

#include "Quillory/Model/OpenRouterAnswer.h"
#include "Quillory/RewriteError.h"
#include "Quillory/Settings/AppSettings.h"
#include "Quillory/Text.h"

#include <QStringDecoder>

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quillory {

namespace {
using Message = OpenRouterClient::Message;

constexpr std::chrono::seconds timeout{20};
constexpr int okStatus = 200;
constexpr qsizetype maxErrorText = 300;
/// In UTF-16 units, several times what the requested number of tokens can hold. Every piece hands on the whole answer,
/// so that a flood of tiny ones would cost time and memory by the square of its length.
constexpr qsizetype maxAnswer = 64 * 1024;

QByteArray trimmedKey(const AppSettings &settings) {
    const QString key = text::trimmed(settings.apiKey());
    if (key.isEmpty()) {
        throw RewriteError::missingKey();
    }
    const auto isControl = [](QChar character) { return character.category() == QChar::Other_Control; };
    if (std::ranges::any_of(key, isControl)) {
        throw RewriteError::badResponse(
            QStringLiteral("The OpenRouter API key holds a line break or another control character."));
    }
    return key.toUtf8();
}

/// Half a surrogate pair, which a field can hand out, becomes "?" here, so that the body is always valid.
QByteArray requestBody(const std::vector<Message> &messages, const QString &model, bool streams) {
    nlohmann::json list = nlohmann::json::array();
    for (const auto &[role, content] : messages) {
        list.push_back({{"role", role.toStdString()}, {"content", content.toStdString()}});
    }
    const nlohmann::json body{
        {"model", model.toStdString()}, {"messages", std::move(list)}, {"temperature", 0.3},
        {"max_tokens", 2048},           {"stream", streams},           {"provider", {{"sort", "latency"}}}};
    return QByteArray::fromStdString(body.dump());
}

/// The start of an error's body, its lines put together.
QString readErrorText(platform::URLByteStream &bytes) {
    // Counting characters is slow for a text that is one long character; nothing honest comes near this.
    constexpr qsizetype enough = 4 * 1024;
    QString read;
    while (read.size() < enough && (read.size() <= maxErrorText || text::characterCount(read) <= maxErrorText)) {
        const auto line = bytes.nextLine();
        if (!line) {
            break;
        }
        read += QString::fromUtf8(*line);
    }
    return read;
}

/// A text as it stands within a JSON string.
QString escaped(const QString &text) {
    return QString::fromStdString(nlohmann::json(text.toStdString()).dump()).chopped(1).sliced(1);
}

/// The error for a status. A service that quotes what it was sent must not bring it into the log; what is left of a
/// longer body comes from the service alone.
RewriteError statusError(int status, QString body, QStringList privateTexts) {
    constexpr qsizetype shortest = 8; // shorter ones are found in any sentence
    std::ranges::sort(privateTexts, std::greater(), &QString::size);
    for (const QString &own : privateTexts) {
        if (own.size() >= shortest) {
            body.replace(own, QStringLiteral("***")).replace(escaped(own), QStringLiteral("***"));
        }
    }
    return RewriteError::badResponse(QStringLiteral("OpenRouter HTTP %1: ").arg(status) +
                                     text::prefix(body, maxErrorText));
}

int statusOf(const std::optional<int> &status) {
    if (!status) {
        throw RewriteError::badResponse(QStringLiteral("No HTTP response"));
    }
    return *status;
}

QString decoded(const QByteArray &body) {
    QStringDecoder decode(QStringDecoder::Utf8);
    const QString whole = decode(body);
    return decode.hasError() ? QString() : whole;
}
} // namespace

platform::URLRequest OpenRouterClient::makeRequest(const std::vector<Message> &messages, const QString &model,
                                                   bool streams) const {
    const QByteArray key = trimmedKey(m_settings);
    return {
        .url = serviceURL(),
        .method = "POST",
        .headers = {{"Authorization", "Bearer " + key}, {"Content-Type", "application/json"}, {"X-Title", "Quillory"}},
        .body = requestBody(messages, model, streams),
        .timeout = timeout};
}

/// The lines of a request's messages that are the user's, and the key.
QStringList OpenRouterClient::privateTexts(const QString &text, const std::optional<QString> &context) const {
    const QString own = text + u'\n' + context.value_or(QString()) + u'\n' +
                        m_settings.store().string(settingsKey::businessProfile).value_or(QString()) + u'\n' +
                        m_settings.knowledgeText();
    return own.split(u'\n') + QStringList{text::trimmed(m_settings.apiKey())};
}

QUrl OpenRouterClient::serviceURL() const {
    QUrl url(QStringLiteral("https://openrouter.ai/api/v1/chat/completions"));
    url.setHost(m_process.infoDictionaryString(QStringLiteral("ModelServiceHost")).value_or(url.host()));
    const auto variable = m_process.environment(QStringLiteral("QUILLORY_MODEL_SERVICE"));
    if (!variable || variable->isEmpty()) {
        return url;
    }
    const QUrl base(*variable, QUrl::StrictMode);
    // The key goes along with every request and must not travel open.
    const bool isSafe = base.scheme() == QLatin1StringView("https") ||
                        (base.scheme() == QLatin1StringView("http") && platform::isLoopback(base));
    if (!isSafe || base.host().isEmpty() || !base.userInfo().isEmpty()) {
        throw RewriteError::badResponse(
            QStringLiteral("QUILLORY_MODEL_SERVICE must be an address that begins with https:// (or with http:// for "
                           "this computer itself: localhost, 127.0.0.1 or [::1])."));
    }
    url.setScheme(base.scheme());
    url.setHost(base.host());
    url.setPort(base.port());
    return url;
}

QString OpenRouterClient::stream(SuggestionKind kind, const QString &text, const std::optional<QString> &context,
                                 const QString &model, const OnChunk &onChunk, std::stop_token stop,
                                 std::optional<Tone> tone) const {
    const auto request = makeRequest(buildMessages(kind, text, context, tone), model, /*streams=*/true);
    const auto bytes = m_session.bytes(request, stop);
    const int status = statusOf(bytes->statusCode());
    if (status != okStatus) {
        throw statusError(status, readErrorText(*bytes), privateTexts(text, context));
    }
    QString accumulated;
    while (const auto line = bytes->nextLine()) {
        if (stop.stop_requested()) {
            throw platform::CancellationError();
        }
        const StreamEvent event = streamEvent(*line);
        if (event.isDone) {
            break;
        }
        if (event.piece.isEmpty()) {
            continue;
        }
        accumulated += event.piece;
        if (accumulated.size() > maxAnswer) {
            throw RewriteError::badResponse(QStringLiteral("The answer from OpenRouter is too long"));
        }
        onChunk(accumulated);
    }
    return text::trimmed(accumulated);
}

QString OpenRouterClient::rewrite(const QString &draft, std::stop_token stop) const {
    const QString model = m_settings.store().string(settingsKey::model).value_or(defaultModel);
    const auto request = makeRequest(buildMessages(SuggestionKind::rewrite, draft, std::nullopt), model,
                                     /*streams=*/false);
    const platform::URLResponse response = m_session.data(request, std::move(stop));
    const int status = statusOf(response.statusCode);
    if (status != okStatus) {
        throw statusError(status, decoded(response.body), privateTexts(draft, std::nullopt));
    }
    return text::trimmed(wholeAnswer(response.body));
}

} // namespace quillory
