// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/KeyStorage.h"
#include "Platform/UserDefaults.h"
#include "Quillory/Settings/AppSettings.h"

#include <atomic>
#include <mutex>

namespace quillory::test {

/// A settings store in memory, which also keeps the key.
class SimulatedUserDefaults final : public platform::UserDefaults, public platform::KeyStorage {
    using Values = std::map<QString, platform::DefaultsValue>;

  public:
    /// While set, nothing reaches the disk.
    std::atomic<bool> diskIsFull = false;
    /// Without the registered defaults.
    [[nodiscard]] Values stored() const {
        const std::scoped_lock lock(m_mutex);
        return m_stored;
    }

    void registerDefaults(const Values &defaults) override {
        const std::scoped_lock lock(m_mutex);
        m_registered.insert(defaults.begin(), defaults.end());
    }
    [[nodiscard]] std::optional<QString> string(const QString &key) const override { return value<QString>(key); }
    [[nodiscard]] bool boolean(const QString &key) const override { return value<bool>(key).value_or(false); }
    [[nodiscard]] qint64 integer(const QString &key) const override { return value<qint64>(key).value_or(0); }
    [[nodiscard]] std::optional<QByteArray> data(const QString &key) const override { return value<QByteArray>(key); }
    bool set(const QString &key, const platform::DefaultsValue &value) override {
        const std::scoped_lock lock(m_mutex);
        m_stored.insert_or_assign(key, value);
        return !diskIsFull;
    }
    bool remove(const QString &key) override {
        const std::scoped_lock lock(m_mutex);
        m_stored.erase(key);
        return !diskIsFull;
    }
    platform::KeyPlace storeKey(const QString &key, const std::stop_token & /*stop*/) override {
        return set(settingsKey::openRouterAPIKey, key) ? platform::KeyPlace::settingsFile : platform::KeyPlace::nowhere;
    }
    [[nodiscard]] bool isFailingToSave() const override { return diskIsFull; }

  private:
    template <typename T> std::optional<T> value(const QString &key) const {
        const std::scoped_lock lock(m_mutex);
        for (const auto *const values : {&m_stored, &m_registered}) {
            const auto found = values->find(key);
            if (found != values->end() && std::holds_alternative<T>(found->second)) {
                return std::get<T>(found->second);
            }
        }
        return std::nullopt;
    }
    mutable std::mutex m_mutex;
    Values m_stored;
    Values m_registered;
};

} // namespace quillory::test
