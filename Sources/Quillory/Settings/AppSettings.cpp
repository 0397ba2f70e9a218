// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Settings/AppSettings.h"

#include "Quillory/Text.h"

#include <QRegularExpression>

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quillory {

namespace {
constexpr std::array toneNames{QLatin1StringView("Professional"), QLatin1StringView("Friendly"),
                               QLatin1StringView("Concise"), QLatin1StringView("Grammar only")};
static_assert(toneNames.size() == allTones.size());

/// QUuid itself also takes braces, and other text after them.
std::optional<QUuid> uuidFromText(const QString &text) {
    static const QRegularExpression form(QStringLiteral("^[[:xdigit:]]{8}(-[[:xdigit:]]{4}){3}-[[:xdigit:]]{12}\\z"));
    return form.match(text).hasMatch() ? std::optional(QUuid::fromString(text)) : std::nullopt;
}

std::optional<QString> stringMember(const nlohmann::json &object, const char *name) {
    const auto member = object.find(name);
    if (member == object.end() || !member->is_string()) {
        return std::nullopt;
    }
    return QString::fromStdString(member->get_ref<const std::string &>());
}

std::optional<FAQEntry> entryFromJSON(const nlohmann::json &object) {
    if (!object.is_object()) {
        return std::nullopt;
    }
    const std::optional<QUuid> id = uuidFromText(stringMember(object, "id").value_or(QString()));
    const auto question = stringMember(object, "question");
    const auto answer = stringMember(object, "answer");
    if (!id || !question || !answer) {
        return std::nullopt;
    }
    return FAQEntry{*id, *question, *answer};
}

bool hasContent(const FAQEntry &entry) {
    return !text::trimmedOfSpaces(entry.question).isEmpty() || !text::trimmedOfSpaces(entry.answer).isEmpty();
}
} // namespace

QString rawValue(Tone tone) {
    return toneNames.at(static_cast<std::size_t>(tone));
}

std::optional<Tone> toneFromRawValue(const QString &rawValue) {
    const auto *const found = std::ranges::find(toneNames, rawValue);
    if (found == toneNames.end()) {
        return std::nullopt;
    }
    return allTones.at(static_cast<std::size_t>(found - toneNames.begin()));
}

QByteArray faqEntriesToJSON(const QList<FAQEntry> &entries) {
    nlohmann::json array = nlohmann::json::array();
    for (const FAQEntry &entry : entries) {
        array.push_back({{"id", entry.id.toString(QUuid::WithoutBraces).toUpper().toStdString()},
                         {"question", entry.question.toStdString()},
                         {"answer", entry.answer.toStdString()}});
    }
    return QByteArray::fromStdString(array.dump());
}

std::optional<QList<FAQEntry>> faqEntriesFromJSON(const QByteArray &json) {
    const auto parsed = nlohmann::json::parse(json.begin(), json.end(), nullptr, /*allow_exceptions=*/false);
    if (!parsed.is_array()) {
        return std::nullopt;
    }
    QList<FAQEntry> entries;
    for (const nlohmann::json &object : parsed) {
        const std::optional<FAQEntry> entry = entryFromJSON(object);
        if (!entry) {
            return std::nullopt;
        }
        entries.append(*entry);
    }
    return entries;
}

void registerSettingsDefaults(platform::UserDefaults &store) {
    store.registerDefaults({
        {settingsKey::model, defaultModel},
        {settingsKey::secondModel, QStringLiteral("google/gemini-2.5-flash-lite")},
        {settingsKey::compareMode, false},
        {settingsKey::tone, rawValue(Tone::professional)},
        {settingsKey::debounceMs, qint64{500}},
        {settingsKey::minChars, qint64{8}},
        {settingsKey::maxChars, qint64{3000}},
        {settingsKey::enabled, true},
        {settingsKey::assistantMode, true},
    });
}

AppSettings::AppSettings(platform::UserDefaults &store, const platform::Process &process)
    : m_store(store), m_process(process) {
    registerSettingsDefaults(store);
}

namespace {
bool isUsable(const std::optional<QString> &key) {
    return key && !key->isEmpty();
}
} // namespace

QString AppSettings::keyFromOutside() const {
    const auto fromEnvironment = m_process.environment(QStringLiteral("OPENROUTER_API_KEY"));
    return isUsable(fromEnvironment)
               ? *fromEnvironment
               : m_process.infoDictionaryString(QStringLiteral("EmbeddedAPIKey")).value_or(QString());
}

QString AppSettings::apiKey() const {
    const auto stored = m_store.string(settingsKey::openRouterAPIKey);
    return isUsable(stored) ? *stored : keyFromOutside();
}

bool AppSettings::isKeySet() const {
    return m_store.isKept(settingsKey::openRouterAPIKey) || !keyFromOutside().isEmpty();
}

QList<FAQEntry> AppSettings::faqEntries() const {
    const std::optional<QByteArray> stored = m_store.data(settingsKey::faqEntries);
    return stored ? faqEntriesFromJSON(*stored).value_or(QList<FAQEntry>()) : QList<FAQEntry>();
}

void AppSettings::setFAQEntries(const QList<FAQEntry> &entries) {
    m_store.set(settingsKey::faqEntries, faqEntriesToJSON(entries));
}

QString AppSettings::knowledgeText() const {
    QStringList rendered;
    for (const FAQEntry &entry : faqEntries()) {
        if (hasContent(entry)) {
            rendered += QStringLiteral("Q: ") + entry.question + QStringLiteral("\nA: ") + entry.answer;
        }
    }
    if (rendered.isEmpty()) {
        return m_store.string(settingsKey::faqKnowledge).value_or(QString());
    }
    return rendered.join(QStringLiteral("\n\n"));
}

} // namespace quillory
