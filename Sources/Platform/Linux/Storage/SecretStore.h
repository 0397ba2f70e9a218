// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>
#include <stop_token>

namespace platform::desktop {

/// Whether the user may be asked for the password of a locked store.
enum class Unlocking { asks, never };

/// Keeps one secret of the program's own. Any thread. Each operation may wait for the user to unlock the store, until
/// the token asks to stop; failures are false or absent.
class SecretStore {
  public:
    virtual ~SecretStore() = default;
    virtual bool store(const QString &secret, const std::stop_token &stop) = 0;
    [[nodiscard]] virtual std::optional<QString> lookUp(Unlocking unlocking, const std::stop_token &stop) = 0;
    /// True when the store does not hold the secret any more.
    virtual bool clear(const std::stop_token &stop) = 0;
};

/// The desktop's Secret Service, as GNOME Keyring, KWallet and KeePassXC offer it.
class SecretService final : public SecretStore {
  public:
    bool store(const QString &secret, const std::stop_token &stop) override;
    [[nodiscard]] std::optional<QString> lookUp(Unlocking unlocking, const std::stop_token &stop) override;
    bool clear(const std::stop_token &stop) override;
};

} // namespace platform::desktop
