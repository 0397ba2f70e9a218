// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <set>
#include <utility>

namespace platform::desktop {

/// A secret key with which a team signs (Ed25519).
class SigningKey {
  public:
    [[nodiscard]] static SigningKey generated(const QString &team);
    /// From its written form; absent for anything else.
    [[nodiscard]] static std::optional<SigningKey> parsed(const QByteArray &text);
    [[nodiscard]] QByteArray written() const;

    [[nodiscard]] const QString &team() const { return m_team; }
    [[nodiscard]] QByteArray publicKey() const;
    [[nodiscard]] QByteArray signatureOf(const QByteArray &message) const;

  private:
    SigningKey(const QString &team, const QByteArray &seed) : m_team(team), m_seed(seed) {}

    QString m_team;
    QByteArray m_seed;
};

/// Trusted public keys, each for a team.
class TrustedKeys {
  public:
    /// Reads lines "TEAM ed25519 KEY". Empty lines, comments that begin with "#" and malformed lines are skipped.
    [[nodiscard]] static TrustedKeys parsed(const QByteArray &text);
    /// One such line.
    [[nodiscard]] static QByteArray line(const QString &team, const QByteArray &publicKey);

    void add(const QString &team, const QByteArray &publicKey) { m_keys.emplace(team, publicKey); }
    [[nodiscard]] bool contains(const QString &team, const QByteArray &publicKey) const {
        return m_keys.contains({team, publicKey});
    }
    /// The teams whose trusted keys a message was signed with; usually one or none.
    [[nodiscard]] QStringList signers(const QByteArray &message, const QByteArray &signature) const;
    /// The keys after statements that replace one by another. A statement counts only if its old key is trusted at that
    /// point; from then on the old key no longer is.
    [[nodiscard]] TrustedKeys after(const QByteArray &rotations) const;

  private:
    std::set<std::pair<QString, QByteArray>> m_keys;
};

/// The statement that a team's new key replaces the old one, signed with the old one.
[[nodiscard]] QByteArray rotationStatement(const SigningKey &oldKey, const QByteArray &newPublicKey);

} // namespace platform::desktop
