// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/SigningKeys.h"

#include <QList>

#include <sodium.h>

namespace platform::desktop {

namespace {
const QByteArray keyTitle = "Quillory signing key 1";
const QByteArray rotationTitle = "Quillory key rotation 1";
const QByteArray algorithm = "ed25519";

/// libsodium must be initialised before any other call; sodium_init() may be called on any thread.
void prepareSodium() {
    static const bool isReady = sodium_init() >= 0;
    if (!isReady) {
        qFatal("libsodium has no source of random numbers");
    }
}

const unsigned char *unsignedBytes(const QByteArray &bytes) {
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

unsigned char *unsignedBytes(QByteArray &bytes) {
    return reinterpret_cast<unsigned char *>(bytes.data());
}

std::optional<QByteArray> decodedBytes(const QByteArray &base64, std::size_t size) {
    const auto decoded = QByteArray::fromBase64Encoding(base64, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || static_cast<std::size_t>((*decoded).size()) != size) {
        return std::nullopt;
    }
    return *decoded;
}

/// The secret key in libsodium's form, and the public one.
std::pair<QByteArray, QByteArray> keyPair(const QByteArray &seed) {
    prepareSodium();
    QByteArray secret(crypto_sign_SECRETKEYBYTES, '\0');
    QByteArray open(crypto_sign_PUBLICKEYBYTES, '\0');
    crypto_sign_seed_keypair(unsignedBytes(open), unsignedBytes(secret), unsignedBytes(seed));
    return {secret, open};
}

bool isSignedWith(const QByteArray &publicKey, const QByteArray &message, const QByteArray &signature) {
    prepareSodium();
    return signature.size() == crypto_sign_BYTES &&
           crypto_sign_verify_detached(unsignedBytes(signature), unsignedBytes(message),
                                       static_cast<unsigned long long>(message.size()), unsignedBytes(publicKey)) == 0;
}

struct Rotation {
    QString team;
    QByteArray oldKey;
    QByteArray newKey;
    QByteArray signature;

    [[nodiscard]] QByteArray message() const {
        return rotationTitle + "\nteam " + team.toUtf8() + "\nold " + oldKey.toBase64() + "\nnew " + newKey.toBase64() +
               '\n';
    }
};

/// Reads the five lines of a statement. The signature covers their labels.
std::optional<Rotation> rotationFrom(const QList<QByteArray> &lines) {
    const auto rest = [&lines](qsizetype line) { return lines.at(line).sliced(lines.at(line).indexOf(' ') + 1); };
    const auto oldKey = decodedBytes(rest(2), crypto_sign_PUBLICKEYBYTES);
    const auto newKey = decodedBytes(rest(3), crypto_sign_PUBLICKEYBYTES);
    const auto signature = decodedBytes(rest(4), crypto_sign_BYTES);
    if (!oldKey || !newKey || !signature) {
        return std::nullopt;
    }
    return Rotation{QString::fromUtf8(rest(1)), *oldKey, *newKey, *signature};
}
} // namespace

SigningKey SigningKey::generated(const QString &team) {
    QByteArray seed(crypto_sign_SEEDBYTES, '\0');
    prepareSodium();
    randombytes_buf(seed.data(), static_cast<std::size_t>(seed.size()));
    return {team, seed};
}

std::optional<SigningKey> SigningKey::parsed(const QByteArray &text) {
    const QList<QByteArray> lines = text.split('\n');
    if (lines.size() < 3 || lines.at(0) != keyTitle || !lines.at(1).startsWith("team ") ||
        !lines.at(2).startsWith("secret ")) {
        return std::nullopt;
    }
    const auto seed = decodedBytes(lines.at(2).sliced(7), crypto_sign_SEEDBYTES);
    return seed ? std::optional(SigningKey(QString::fromUtf8(lines.at(1).sliced(5)), *seed)) : std::nullopt;
}

QByteArray SigningKey::written() const {
    return keyTitle + "\nteam " + m_team.toUtf8() + "\nsecret " + m_seed.toBase64() + '\n';
}

QByteArray SigningKey::publicKey() const {
    return keyPair(m_seed).second;
}

QByteArray SigningKey::signatureOf(const QByteArray &message) const {
    QByteArray signature(crypto_sign_BYTES, '\0');
    crypto_sign_detached(unsignedBytes(signature), nullptr, unsignedBytes(message),
                         static_cast<unsigned long long>(message.size()), unsignedBytes(keyPair(m_seed).first));
    return signature;
}

TrustedKeys TrustedKeys::parsed(const QByteArray &text) {
    TrustedKeys keys;
    for (const QByteArray &written : text.split('\n')) {
        const QList<QByteArray> words = written.simplified().split(' ');
        if (words.size() != 3 || words.first().startsWith('#') || words.at(1) != algorithm) {
            continue;
        }
        if (const auto key = decodedBytes(words.at(2), crypto_sign_PUBLICKEYBYTES)) {
            keys.add(QString::fromUtf8(words.first()), *key);
        }
    }
    return keys;
}

QByteArray TrustedKeys::line(const QString &team, const QByteArray &publicKey) {
    return team.toUtf8() + ' ' + algorithm + ' ' + publicKey.toBase64() + '\n';
}

QStringList TrustedKeys::signers(const QByteArray &message, const QByteArray &signature) const {
    QStringList teams;
    for (const auto &[team, key] : m_keys) {
        if (isSignedWith(key, message, signature)) {
            teams += team;
        }
    }
    return teams;
}

TrustedKeys TrustedKeys::after(const QByteArray &rotations) const {
    constexpr qsizetype statementLines = 5;
    TrustedKeys keys = *this;
    const QList<QByteArray> lines = rotations.split('\n');
    for (qsizetype at = 0; at + statementLines <= lines.size(); ++at) {
        if (lines.at(at) != rotationTitle) {
            continue;
        }
        const auto rotation = rotationFrom(lines.sliced(at, statementLines));
        if (rotation && keys.contains(rotation->team, rotation->oldKey) &&
            isSignedWith(rotation->oldKey, rotation->message(), rotation->signature)) {
            keys.m_keys.erase({rotation->team, rotation->oldKey});
            keys.add(rotation->team, rotation->newKey);
        }
    }
    return keys;
}

QByteArray rotationStatement(const SigningKey &oldKey, const QByteArray &newPublicKey) {
    const Rotation rotation{oldKey.team(), oldKey.publicKey(), newPublicKey, {}};
    return rotation.message() + "signature " + oldKey.signatureOf(rotation.message()).toBase64() + '\n';
}

} // namespace platform::desktop
