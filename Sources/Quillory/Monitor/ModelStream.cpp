// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Monitor/ModelStream.h"

#include "Quillory/Monitor/AnswerScreening.h"
#include "Quillory/Settings/AppSettings.h"
#include "Quillory/Text.h"

namespace quillory {

namespace {

QString cardLabel(SuggestionKind kind, std::size_t index, std::size_t count) {
    if (count > 1) {
        return QStringLiteral("Option %1").arg(index + 1);
    }
    return kind == SuggestionKind::reply ? QStringLiteral("Suggested reply") : QStringLiteral("Suggested rewrite");
}

std::optional<QString> cardText(const ModelStream &stream) {
    if (stream.final || stream.buffer.isEmpty()) {
        return stream.final;
    }
    return stream.buffer;
}

} // namespace

std::vector<ModelChoice> activeModels(const platform::UserDefaults &store) {
    const QString primary = store.string(settingsKey::model).value_or(defaultModel);
    std::vector<ModelChoice> models{{primary, prettyModelName(primary)}};
    if (!store.boolean(settingsKey::compareMode)) {
        return models;
    }
    const QString second = text::trimmedOfSpaces(store.string(settingsKey::secondModel).value_or(QString()));
    if (!second.isEmpty() && !text::equal(second, primary)) {
        models.push_back({second, prettyModelName(second)});
    }
    return models;
}

SuggestionCardData card(const ModelStream &stream, SuggestionKind kind, std::size_t index, std::size_t count) {
    SuggestionCardData data;
    data.label = cardLabel(kind, index, count);
    data.text = cardText(stream);
    data.isComplete = stream.final.has_value();
    if (const auto elapsed = stream.elapsed()) {
        data.elapsedText = text::fixed(*elapsed, 1) + u's';
    }
    data.failed = stream.failed;
    return data;
}

} // namespace quillory
