// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Storage/SecretUserDefaults.h"

#include <QUuid>

#include <utility>

namespace platform::desktop {

namespace {
using namespace std::chrono_literals;
const QString keySetting = QStringLiteral("openRouterAPIKey");
const QString markSetting = QStringLiteral("openRouterAPIKeyInPasswordStore");
constexpr auto longestLookUp = 2s;
/// After a look-up that found nothing, for example because the user did not unlock the store. Later ones do not ask the
/// user: a dialog that was dismissed must not come back by itself.
constexpr auto untilNextLookUp = 10s;
} // namespace

SecretUserDefaults::SecretUserDefaults(SecretStore &secrets, const QString &folder, Saving saving)
    : FileUserDefaults(folder, saving), m_secrets(secrets) {}

std::optional<QString> SecretUserDefaults::string(const QString &key) const {
    auto stored = FileUserDefaults::string(key);
    if (key != keySetting || (stored && !stored->isEmpty())) {
        return stored;
    }
    const auto mark = FileUserDefaults::string(markSetting);
    if (!mark) {
        return stored;
    }
    std::unique_lock lock(m_mutex);
    if (m_mark == *mark && m_secret) {
        return m_secret;
    }
    if (!m_isLookingUp && (m_mark != *mark || std::chrono::steady_clock::now() >= m_nextTry)) {
        startLookUp(*mark);
    }
    m_found.wait_for(lock, longestLookUp, [this] { return !m_isLookingUp; });
    return m_mark == *mark ? m_secret : std::nullopt;
}

/// With the mutex held. An earlier look-up has ended by then, except for its last steps.
void SecretUserDefaults::startLookUp(const QString &mark) const {
    const bool isNew = std::exchange(m_mark, mark) != mark;
    const bool asks = std::exchange(m_mayAsk, false) || isNew;
    m_isLookingUp = true;
    m_secret.reset();
    m_lookUp = std::jthread([this, asks](const std::stop_token &stop) {
        auto secret = m_secrets.lookUp(asks ? Unlocking::asks : Unlocking::never, stop);
        {
            const std::scoped_lock lock(m_mutex);
            m_secret = std::move(secret);
            m_isLookingUp = false;
            m_nextTry = std::chrono::steady_clock::now() + untilNextLookUp;
        }
        m_found.notify_all();
    });
}

bool SecretUserDefaults::isKept(const QString &key) const {
    return UserDefaults::isKept(key == keySetting && FileUserDefaults::string(markSetting) ? markSetting : key);
}

void SecretUserDefaults::askAgain() {
    const std::scoped_lock lock(m_mutex);
    if (!m_isLookingUp) {
        m_mayAsk = true;
        m_nextTry = {};
    }
}

bool SecretUserDefaults::set(const QString &key, const DefaultsValue &value) {
    // If the old key stays in the password store it does no harm: the new one comes first.
    const bool isForgotten = key != keySetting || forgetSecret();
    return FileUserDefaults::set(key, value) &&
           (isForgotten || !FileUserDefaults::string(key).value_or(QString()).isEmpty());
}

bool SecretUserDefaults::remove(const QString &key) {
    const bool isForgotten = key != keySetting || forgetSecret();
    return FileUserDefaults::remove(key) && isForgotten;
}

/// The mark stays for as long as the password store may have a key: without it that key would never be cleared.
bool SecretUserDefaults::forgetSecret() {
    return !FileUserDefaults::string(markSetting) || (m_secrets.clear({}) && FileUserDefaults::remove(markSetting));
}

KeyPlace SecretUserDefaults::storeKey(const QString &key, const std::stop_token &stop) {
    const bool isStored = m_secrets.store(key, stop);
    if (isStored && FileUserDefaults::set(markSetting, QUuid::createUuid().toString()) &&
        FileUserDefaults::remove(keySetting)) {
        return KeyPlace::passwordStore;
    }
    if (stop.stop_requested()) {
        return KeyPlace::nowhere;
    }
    if (isStored) { // otherwise a user who has just dismissed the password store would be asked again
        forgetSecret();
    }
    return FileUserDefaults::set(keySetting, key) ? KeyPlace::settingsFile : KeyPlace::nowhere;
}

} // namespace platform::desktop
