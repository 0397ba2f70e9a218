// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Settings/AppSettings.h"
#include "Quillory/SuggestionKind.h"

#include <QString>
#include <QUrl>

#include <functional>
#include <optional>
#include <stop_token>
#include <vector>

/// The exchange with the model service: one chat-completions request per call. No state. The requests block the
/// calling thread, which is never the main one. Failures: RewriteError (also for a model service address that is not
/// safe), platform::URLError for the transport, nlohmann's JSON exceptions, and platform::CancellationError once the
/// stop token asks for it.
namespace quillory::OpenRouterClient {

/// Where requests go: the service's address, on the host that the bundle names, or the one that QUILLORY_MODEL_SERVICE
/// says instead. Throws RewriteError for an address to which the key must not go.
[[nodiscard]] QUrl serviceURL();

struct Message {
    QString role;
    QString content;
    friend bool operator==(const Message &, const Message &) = default;
};

/// The messages of a request: six for a rewrite of the text, two for a reply to it. The context is the visible
/// conversation behind a rewrite. Reads the profile and the FAQ from the settings, and so the tone unless one is given.
[[nodiscard]] std::vector<Message> buildMessages(SuggestionKind kind, const QString &text,
                                                 const std::optional<QString> &context,
                                                 std::optional<Tone> tone = std::nullopt);

/// Takes the whole answer so far, untrimmed, on the calling thread of stream().
using OnChunk = std::function<void(const QString &accumulated)>;

/// Streams an answer and returns it whole, trimmed.
QString stream(SuggestionKind kind, const QString &text, const std::optional<QString> &context, const QString &model,
               const OnChunk &onChunk, std::stop_token stop, std::optional<Tone> tone = std::nullopt);

/// Asks the configured model once for a rewrite of a draft and returns it trimmed.
QString rewrite(const QString &draft, std::stop_token stop = {});

} // namespace quillory::OpenRouterClient
