// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <map>
#include <optional>
#include <variant>

namespace platform {

using DefaultsValue = std::variant<bool, qint64, QString, QByteArray>;

/// A persistent key-value store of preferences. Registered defaults apply to keys that were never written and are not
/// saved. A stored value of another type reads as if the key had never been written. Safe to use from any thread.
class UserDefaults {
  public:
    virtual ~UserDefaults() = default;
    virtual void registerDefaults(const std::map<QString, DefaultsValue> &defaults) = 0;
    [[nodiscard]] virtual std::optional<QString> string(const QString &key) const = 0;
    /// Whether a text is kept that is not empty. Tells it at once, also where the text itself waits for the user.
    [[nodiscard]] virtual bool isKept(const QString &key) const { return !string(key).value_or(QString()).isEmpty(); }
    /// False when there is no value.
    [[nodiscard]] virtual bool boolean(const QString &key) const = 0;
    /// 0 when there is no value.
    [[nodiscard]] virtual qint64 integer(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<QByteArray> data(const QString &key) const = 0;
    /// Stores a value; false when it is known not to have been saved to disk (it holds in memory all the same).
    virtual bool set(const QString &key, const DefaultsValue &value) = 0;
    /// Forgets a stored value, so that the registered default shows again; false when that is known not to have
    /// been saved.
    virtual bool remove(const QString &key) = 0;
    /// For what the user does on purpose: a question that was turned down may be asked once more.
    virtual void askAgain() {}
    /// Whether changes are kept in memory only, because the last attempt to save them failed.
    [[nodiscard]] virtual bool isFailingToSave() const = 0;
};

} // namespace platform
