// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Storage/FileUserDefaults.h"

#include <utility>

namespace platform::desktop {

FileUserDefaults::FileUserDefaults(const QString &folder, Saving saving) : m_stored(folder, saving) {}

template <typename T> std::optional<T> FileUserDefaults::value(const QString &key) const {
    auto stored = m_stored.value(key);
    if (stored && std::holds_alternative<T>(*stored)) {
        return std::get<T>(*std::move(stored));
    }
    const std::scoped_lock lock(m_mutex);
    const auto registered = m_registered.find(key);
    const bool applies = registered != m_registered.end() && std::holds_alternative<T>(registered->second);
    return applies ? std::optional(std::get<T>(registered->second)) : std::nullopt;
}

void FileUserDefaults::registerDefaults(const std::map<QString, DefaultsValue> &defaults) {
    const std::scoped_lock lock(m_mutex);
    for (const auto &[key, value] : defaults) {
        m_registered.insert_or_assign(key, value);
    }
}

std::optional<QString> FileUserDefaults::string(const QString &key) const {
    return value<QString>(key);
}

bool FileUserDefaults::boolean(const QString &key) const {
    return value<bool>(key).value_or(false);
}

qint64 FileUserDefaults::integer(const QString &key) const {
    return value<qint64>(key).value_or(0);
}

std::optional<QByteArray> FileUserDefaults::data(const QString &key) const {
    return value<QByteArray>(key);
}

bool FileUserDefaults::set(const QString &key, const DefaultsValue &value) {
    return m_stored.change(key, value);
}

bool FileUserDefaults::remove(const QString &key) {
    return m_stored.change(key, std::nullopt);
}

} // namespace platform::desktop
