// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Storage/SettingsDocument.h"

#include <nlohmann/json.hpp>

namespace platform::desktop::settingsDocument {

namespace {
using Json = nlohmann::ordered_json;
constexpr auto dataMember = "data";
/// Writing and copying JSON recurses, so a document that nests without end must not get that far.
constexpr int deepest = 16;

std::optional<Json> parsed(const QByteArray &json) {
    bool tooDeep = false;
    const auto watchDepth = [&tooDeep](int depth, Json::parse_event_t, Json &) {
        tooDeep = tooDeep || depth > deepest;
        return depth <= deepest;
    };
    Json document = Json::parse(json.begin(), json.end(), watchDepth, /*allow_exceptions=*/false);
    if (tooDeep || !document.is_object()) {
        return std::nullopt;
    }
    return document;
}

std::optional<DefaultsValue> dataFrom(const Json &object) {
    const auto member = object.find(dataMember);
    if (object.size() != 1 || member == object.end() || !member->is_string()) {
        return std::nullopt;
    }
    auto decoded = QByteArray::fromBase64Encoding(QByteArray::fromStdString(member->get_ref<const std::string &>()),
                                                  QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? std::optional<DefaultsValue>(*std::move(decoded)) : std::nullopt;
}

std::optional<DefaultsValue> valueFrom(const Json &member) {
    switch (member.type()) {
    case Json::value_t::boolean:
        return member.get<bool>();
    case Json::value_t::number_integer:
        return qint64{member.get<std::int64_t>()};
    case Json::value_t::number_unsigned:
        if (member.get<std::uint64_t>() > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
            return std::nullopt;
        }
        return qint64{member.get<std::int64_t>()};
    case Json::value_t::string:
        return QString::fromStdString(member.get_ref<const std::string &>());
    case Json::value_t::object:
        return dataFrom(member);
    default:
        return std::nullopt;
    }
}

struct ToJson {
    Json operator()(bool value) const { return value; }
    Json operator()(qint64 value) const { return value; }
    Json operator()(const QString &value) const { return value.toStdString(); }
    Json operator()(const QByteArray &value) const { return {{dataMember, value.toBase64().toStdString()}}; }
};

/// A value of another type was written by hand, or by a later version: it is put aside, not overwritten.
void keepOtherType(Json &document, const std::string &key, const DefaultsValue &replacement) {
    const auto member = document.find(key);
    if (member == document.end()) {
        return;
    }
    const std::optional<DefaultsValue> old = valueFrom(*member);
    if (!old || old->index() != replacement.index()) {
        document[key + ".replaced"] = Json(*member);
    }
}
} // namespace

std::optional<Values> values(const QByteArray &json) {
    const std::optional<Json> document = parsed(json);
    if (!document) {
        return std::nullopt;
    }
    Values values;
    for (const auto &[key, member] : document->items()) {
        if (auto value = valueFrom(member)) {
            values.insert_or_assign(QString::fromStdString(key), *std::move(value));
        }
    }
    return values;
}

QByteArray merged(const QByteArray &json, const Changes &changes) {
    Json document = parsed(json).value_or(Json::object());
    for (const auto &[key, value] : changes) {
        if (value) {
            keepOtherType(document, key.toStdString(), *value);
            document[key.toStdString()] = std::visit(ToJson(), *value);
        } else {
            document.erase(key.toStdString());
        }
    }
    return QByteArray::fromStdString(document.dump(2, ' ', false, Json::error_handler_t::replace)) + '\n';
}

} // namespace platform::desktop::settingsDocument
