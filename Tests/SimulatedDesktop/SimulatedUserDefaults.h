// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/UserDefaults.h"

#include <atomic>
#include <mutex>

namespace quillory::test {

/// A settings store in memory.
class SimulatedUserDefaults final : public platform::UserDefaults {
  public:
    void registerDefaults(const std::map<QString, platform::DefaultsValue> &defaults) override;
    [[nodiscard]] std::optional<QString> string(const QString &key) const override;
    [[nodiscard]] bool boolean(const QString &key) const override;
    [[nodiscard]] qint64 integer(const QString &key) const override;
    [[nodiscard]] std::optional<QByteArray> data(const QString &key) const override;
    bool set(const QString &key, const platform::DefaultsValue &value) override;
    bool remove(const QString &key) override;
    [[nodiscard]] bool isFailingToSave() const override { return diskIsFull; }

    /// While set, nothing reaches the disk.
    std::atomic<bool> diskIsFull = false;
    /// What was written, without the registered defaults.
    [[nodiscard]] std::map<QString, platform::DefaultsValue> stored() const;
    [[nodiscard]] std::map<QString, platform::DefaultsValue> registered() const;

  private:
    template <typename T> std::optional<T> value(const QString &key) const;

    mutable std::mutex m_mutex;
    std::map<QString, platform::DefaultsValue> m_stored;
    std::map<QString, platform::DefaultsValue> m_registered;
};

} // namespace quillory::test
