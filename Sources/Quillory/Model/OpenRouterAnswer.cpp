// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Model/OpenRouterAnswer.h"

#include "Quillory/RewriteError.h"
#include "Quillory/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>

namespace quillory {

namespace {
using nlohmann::json;

/// Drops what is nested deeper than anything that we read, so that a megabyte of brackets takes little memory.
bool keepsShallow(int depth, json::parse_event_t event, json & /*parsed*/) {
    constexpr int deepest = 16;
    const bool opens = event == json::parse_event_t::array_start || event == json::parse_event_t::object_start;
    return !opens || depth < deepest;
}

const json *member(const json &value, const char *name) {
    if (!value.is_object()) {
        return nullptr;
    }
    const auto found = value.find(name);
    return found == value.end() ? nullptr : &*found;
}

/// The string at choices[0][holder]["content"].
std::optional<QString> contentOf(const json &answer, const char *holder) {
    const json *const choices = member(answer, "choices");
    const bool isList = choices != nullptr && choices->is_array() && !choices->empty();
    if (!isList || !std::ranges::all_of(*choices, [](const json &choice) { return choice.is_object(); })) {
        return std::nullopt;
    }
    const json *const held = member(choices->front(), holder);
    const json *const content = held == nullptr ? nullptr : member(*held, "content");
    if (content == nullptr || !content->is_string()) {
        return std::nullopt;
    }
    return QString::fromStdString(content->get_ref<const std::string &>());
}

bool isASCII(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

/// Without the spaces and tabs at both ends.
QByteArrayView trimmedOfBlanks(QByteArrayView bytes) {
    const auto isBlank = [](char byte) { return byte == ' ' || byte == '\t'; };
    while (!bytes.empty() && isBlank(bytes.front())) {
        bytes = bytes.sliced(1);
    }
    while (!bytes.empty() && isBlank(bytes.back())) {
        bytes.chop(1);
    }
    return bytes;
}

/// The text of an event: what follows "data:", trimmed. Only rare lines, with other than ASCII characters at an end,
/// are converted for that.
QByteArray eventText(const QByteArray &line) {
    constexpr qsizetype prefixLength = 5;
    const QByteArrayView rest = trimmedOfBlanks(QByteArrayView(line).sliced(prefixLength));
    if (rest.empty() || (isASCII(rest.front()) && isASCII(rest.back()))) {
        return rest.toByteArray();
    }
    return text::trimmedOfSpaces(QString::fromUtf8(rest)).toUtf8();
}
} // namespace

StreamEvent streamEvent(const QByteArray &line) {
    if (!line.startsWith("data:")) {
        return {};
    }
    const QByteArray event = eventText(line);
    if (event == "[DONE]") {
        return {.isDone = true, .piece = {}};
    }
    const json parsed = json::parse(event.begin(), event.end(), keepsShallow, /*allow_exceptions=*/false);
    return {.isDone = false, .piece = contentOf(parsed, "delta").value_or(QString())};
}

QString wholeAnswer(const QByteArray &body) {
    const auto content = contentOf(json::parse(body.begin(), body.end(), keepsShallow), "message");
    if (!content) {
        throw RewriteError::badResponse(QStringLiteral("Unexpected response shape from OpenRouter"));
    }
    return *content;
}

} // namespace quillory
