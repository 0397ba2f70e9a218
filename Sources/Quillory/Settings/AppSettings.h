// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Process.h"
#include "Platform/UserDefaults.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUuid>

#include <array>
#include <optional>

namespace quillory {

/// The keys of the settings store.
namespace settingsKey {
inline const QString model = QStringLiteral("model");
inline const QString secondModel = QStringLiteral("secondModel");
inline const QString compareMode = QStringLiteral("compareMode");
inline const QString tone = QStringLiteral("tone");
inline const QString debounceMs = QStringLiteral("debounceMs");
inline const QString minChars = QStringLiteral("minChars");
inline const QString maxChars = QStringLiteral("maxChars");
inline const QString enabled = QStringLiteral("enabled");
inline const QString assistantMode = QStringLiteral("assistantMode");
inline const QString businessProfile = QStringLiteral("businessProfile");
inline const QString faqEntries = QStringLiteral("faqEntries");
inline const QString faqKnowledge = QStringLiteral("faqKnowledge");
inline const QString openRouterAPIKey = QStringLiteral("openRouterAPIKey");
inline const QString debugAcceptOnce = QStringLiteral("debugAcceptOnce");
} // namespace settingsKey

/// The model to use if the settings name none.
inline const QString defaultModel = QStringLiteral("anthropic/claude-haiku-4.5");

/// How a rewrite should sound, in the order in which the choices are offered.
enum class Tone { professional, friendly, concise, grammarOnly };
inline constexpr std::array allTones{Tone::professional, Tone::friendly, Tone::concise, Tone::grammarOnly};
/// The stored and displayed name of a tone.
[[nodiscard]] QString rawValue(Tone tone);
/// The tone with exactly that name.
[[nodiscard]] std::optional<Tone> toneFromRawValue(const QString &rawValue);

/// A question that customers ask and the business's answer to it.
struct FAQEntry {
    QUuid id = QUuid::createUuid();
    QString question;
    QString answer;
    friend bool operator==(const FAQEntry &, const FAQEntry &) = default;
};

/// The stored form of a list of entries: a JSON array of objects, UTF-8.
[[nodiscard]] QByteArray faqEntriesToJSON(const QList<FAQEntry> &entries);
/// The entries in that form; absent if anything is wrong with it: not JSON, not an array, a member missing or not a
/// string, an identifier that is not a UUID in its 36-character form. Further members are ignored.
[[nodiscard]] std::optional<QList<FAQEntry>> faqEntriesFromJSON(const QByteArray &json);

/// Registers the defaults of the settings that have one.
void registerSettingsDefaults(platform::UserDefaults &store);

/// The settings that need logic, on a store whose defaults it registers. All others are read from store() by key at the
/// moment of use, so that a change takes effect at the next read. Safe to use from any thread.
class AppSettings {
  public:
    /// Both outlive the settings. process: gives a key to users who have stored none.
    AppSettings(platform::UserDefaults &store, const platform::Process &process);

    [[nodiscard]] platform::UserDefaults &store() const { return m_store; }
    /// The key as stored, else OPENROUTER_API_KEY, else the bundle's "EmbeddedAPIKey", else "". Not trimmed.
    [[nodiscard]] QString apiKey() const;
    /// Whether there is a key. Never waits: a locked password store is not asked for the key itself.
    [[nodiscard]] bool isKeySet() const;
    /// The stored list in its order; empty if there is none or it cannot be read.
    [[nodiscard]] QList<FAQEntry> faqEntries() const;
    void setFAQEntries(const QList<FAQEntry> &entries);
    /// The FAQ list as text for a prompt, or the older free text if no entry has content.
    [[nodiscard]] QString knowledgeText() const;

  private:
    /// The key of a user who has stored none.
    [[nodiscard]] QString keyFromOutside() const;

    platform::UserDefaults &m_store;
    const platform::Process &m_process;
};

} // namespace quillory
