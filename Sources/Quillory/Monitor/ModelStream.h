// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/UserDefaults.h"
#include "Quillory/Panel/SuggestionCardData.h"
#include "Quillory/SuggestionKind.h"
#include "Quillory/Tasks.h"

#include <QString>

#include <optional>
#include <vector>

namespace quillory {

struct ModelChoice {
    /// The identifier that the model service knows.
    QString id;
    /// The model's name for people.
    QString label;
};
/// The models that the settings say are to be asked, one or two.
[[nodiscard]] std::vector<ModelChoice> activeModels(const platform::UserDefaults &store);

/// One model's streamed request, and the card that shows it: both have the same index. Streaming until it is complete
/// (final is there) or failed, for good. Main thread only.
struct ModelStream {
    ModelStream(QString modelIdentifier, QString name, platform::Instant start)
        : model(std::move(modelIdentifier)), label(std::move(name)), startedAt(start) {}

    /// The identifier that the model service knows.
    const QString model;
    /// The model's name for people.
    const QString label;
    /// The whole answer so far.
    QString buffer;
    /// The screened answer.
    std::optional<QString> final;
    bool failed = false;
    /// The running request.
    std::optional<Task> task;
    const platform::Instant startedAt;
    std::optional<platform::Instant> completedAt;
    platform::Instant cardUpdatedAt = platform::distantPast;

    [[nodiscard]] bool isStreaming() const { return !final && !failed; }
    /// How long the answer took, in seconds.
    [[nodiscard]] std::optional<double> elapsed() const {
        return completedAt ? std::optional(*completedAt - startedAt) : std::nullopt;
    }
};

/// What the card at an index of so many cards shows of a stream.
[[nodiscard]] SuggestionCardData card(const ModelStream &stream, SuggestionKind kind, std::size_t index,
                                      std::size_t count);

} // namespace quillory
