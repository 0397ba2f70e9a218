// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/URLSession.h"
#include "Quillory/Settings/AppSettings.h"
#include "Quillory/SuggestionKind.h"

#include <QString>

#include <functional>
#include <optional>
#include <stop_token>
#include <vector>

namespace quillory {

/// The exchange with the model service: one chat-completions request per call. No state of its own: what it says and to
/// whom is read from the settings and the environment at each call. The requests block the calling thread, which is
/// never the main one; any number of threads may call at once. Failures: RewriteError (also for a model service address
/// that is not safe), platform::URLError for the transport, nlohmann's JSON exceptions, and platform::CancellationError
/// once the stop token asks for it.
class OpenRouterClient {
  public:
    /// All of them outlive the client.
    OpenRouterClient(const AppSettings &settings, const platform::Process &process, platform::URLSession &session)
        : m_settings(settings), m_process(process), m_session(session) {}

    /// Where requests go: the service's address, on the host that the bundle names, or the one that
    /// QUILLORY_MODEL_SERVICE says instead. Throws RewriteError for an address to which the key must not go.
    [[nodiscard]] QUrl serviceURL() const;

    struct Message {
        QString role;
        QString content;
        friend bool operator==(const Message &, const Message &) = default;
    };

    /// The messages of a request: six for a rewrite of the text, two for a reply to it. The context is the visible
    /// conversation behind a rewrite. Reads the profile and the FAQ from the settings, and so the tone unless one is
    /// given.
    [[nodiscard]] std::vector<Message> buildMessages(SuggestionKind kind, const QString &text,
                                                     const std::optional<QString> &context,
                                                     std::optional<Tone> tone = std::nullopt) const;

    /// Takes the whole answer so far, untrimmed, on the calling thread of stream().
    using OnChunk = std::function<void(const QString &accumulated)>;

    /// Streams an answer and returns it whole, trimmed.
    QString stream(SuggestionKind kind, const QString &text, const std::optional<QString> &context,
                   const QString &model, const OnChunk &onChunk, std::stop_token stop,
                   std::optional<Tone> tone = std::nullopt) const;

    /// Asks the configured model once for a rewrite of a draft and returns it trimmed.
    [[nodiscard]] QString rewrite(const QString &draft, std::stop_token stop = {}) const;

  private:
    [[nodiscard]] platform::URLRequest makeRequest(const std::vector<Message> &messages, const QString &model,
                                                   bool streams) const;
    [[nodiscard]] QStringList privateTexts(const QString &text, const std::optional<QString> &context) const;

    const AppSettings &m_settings;
    const platform::Process &m_process;
    platform::URLSession &m_session;
};

} // namespace quillory
