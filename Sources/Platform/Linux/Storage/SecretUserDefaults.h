// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/KeyStorage.h"
#include "Platform/Linux/Storage/FileUserDefaults.h"
#include "Platform/Linux/Storage/SecretStore.h"

#include <chrono>
#include <condition_variable>
#include <thread>

namespace platform::desktop {

/// Settings in the file, except that the API key may be in the desktop's password store instead. The file then holds a
/// mark that changes with every new key: a running program notices a new key, and a program whose user never used the
/// password store never asks it. A key in the file comes first.
class SecretUserDefaults final : public FileUserDefaults, public KeyStorage {
  public:
    /// The password store outlives this.
    explicit SecretUserDefaults(SecretStore &secrets, const QString &folder = folders::configuration(),
                                Saving saving = Saving::atOnce);

    /// For the key: waits a moment for a locked password store, and is absent until it has been unlocked.
    [[nodiscard]] std::optional<QString> string(const QString &key) const override;
    [[nodiscard]] bool isKept(const QString &key) const override;
    bool set(const QString &key, const DefaultsValue &value) override;
    /// For the key: also false when the password store still has it, or may have it.
    bool remove(const QString &key) override;
    void askAgain() override;
    KeyPlace storeKey(const QString &key, const std::stop_token &stop) override;

  private:
    void startLookUp(const QString &mark) const;
    bool forgetSecret();

    SecretStore &m_secrets;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_found;
    /// The key that was found last, if any, and the mark that belongs to it.
    mutable std::optional<QString> m_secret;
    mutable QString m_mark;
    mutable bool m_isLookingUp = false;
    /// Whether the user may be asked to unlock the store: once, until there is a new reason.
    mutable bool m_mayAsk = true;
    mutable std::chrono::steady_clock::time_point m_nextTry;
    /// Last, so that it ends first.
    mutable std::jthread m_lookUp;
};

} // namespace platform::desktop
