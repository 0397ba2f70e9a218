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
/// The one or two models that the settings choose.
[[nodiscard]] std::vector<ModelChoice> activeModels(const platform::UserDefaults &store);

/// One model's streamed request; the card that shows it has the same index. It streams until it is complete (final is
/// set) or has failed, and stays so. Main thread only.
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

/// What the card of a stream shows. index, count: which card it is, of how many.
[[nodiscard]] SuggestionCardData card(const ModelStream &stream, SuggestionKind kind, std::size_t index,
                                      std::size_t count);

} // namespace quillory
