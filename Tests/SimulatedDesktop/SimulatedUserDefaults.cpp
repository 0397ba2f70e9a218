// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "SimulatedDesktop/SimulatedUserDefaults.h"

namespace quillory::test {

using platform::DefaultsValue;

template <typename T> std::optional<T> SimulatedUserDefaults::value(const QString &key) const {
    const std::scoped_lock lock(m_mutex);
    for (const auto *const values : {&m_stored, &m_registered}) {
        const auto found = values->find(key);
        if (found != values->end() && std::holds_alternative<T>(found->second)) {
            return std::get<T>(found->second);
        }
    }
    return std::nullopt;
}

void SimulatedUserDefaults::registerDefaults(const std::map<QString, DefaultsValue> &defaults) {
    const std::scoped_lock lock(m_mutex);
    for (const auto &[key, value] : defaults) {
        m_registered.insert_or_assign(key, value);
    }
}

std::optional<QString> SimulatedUserDefaults::string(const QString &key) const {
    return value<QString>(key);
}

bool SimulatedUserDefaults::boolean(const QString &key) const {
    return value<bool>(key).value_or(false);
}

qint64 SimulatedUserDefaults::integer(const QString &key) const {
    return value<qint64>(key).value_or(0);
}

std::optional<QByteArray> SimulatedUserDefaults::data(const QString &key) const {
    return value<QByteArray>(key);
}

bool SimulatedUserDefaults::set(const QString &key, const DefaultsValue &value) {
    const std::scoped_lock lock(m_mutex);
    m_stored.insert_or_assign(key, value);
    return !diskIsFull;
}

bool SimulatedUserDefaults::remove(const QString &key) {
    const std::scoped_lock lock(m_mutex);
    m_stored.erase(key);
    return !diskIsFull;
}

std::map<QString, DefaultsValue> SimulatedUserDefaults::stored() const {
    const std::scoped_lock lock(m_mutex);
    return m_stored;
}

std::map<QString, DefaultsValue> SimulatedUserDefaults::registered() const {
    const std::scoped_lock lock(m_mutex);
    return m_registered;
}

} // namespace quillory::test
