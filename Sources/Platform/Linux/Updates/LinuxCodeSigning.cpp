// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/LinuxCodeSigning.h"

#include "Platform/Linux/Updates/FileTree.h"
#include "Platform/URLSession.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSysInfo>

#include <numeric>
#include <sys/stat.h>

namespace platform::desktop {

namespace {
constexpr qint64 largestText = 64 << 10;
constexpr mode_t plainFile = 0644;

bool isSealing(const BundleEntry &entry) {
    return entry.path == bundleName::manifest || entry.path == bundleName::signature;
}

/// Everything in a bundle except for the manifest and its signature.
std::vector<BundleEntry> contentsOf(int bundle) {
    std::vector<BundleEntry> entries = fileTree::list(bundle);
    std::erase_if(entries, [](const BundleEntry &entry) { return isSealing(entry) && entry.mode == plainFile; });
    return entries;
}

std::vector<BundleEntry> withoutDigests(std::vector<BundleEntry> entries) {
    for (BundleEntry &entry : entries) {
        entry.digest.clear();
    }
    return entries;
}

/// The manifest of a bundle if a trusted team signed it.
std::optional<Manifest> signedManifest(int bundle, const TrustedKeys &trusted) {
    const auto text = fileTree::content(bundle, bundleName::manifest, largestManifest);
    const auto signature = fileTree::content(bundle, bundleName::signature, largestText);
    if (!text || !signature) {
        return std::nullopt;
    }
    const TrustedKeys keys =
        trusted.after(fileTree::content(bundle, bundleName::rotations, largestText).value_or(QByteArray()));
    const QStringList signers = keys.signers(*text, QByteArray::fromBase64(signature->trimmed()));
    // Nothing is read of a manifest that nobody signed.
    std::optional<Manifest> manifest = signers.isEmpty() ? std::nullopt : Manifest::parsed(*text);
    return manifest && signers.contains(manifest->team) ? std::move(manifest) : std::nullopt;
}

bool digestsAgree(int bundle, const Manifest &manifest, const Watch &watch) {
    const auto add = [](qint64 sum, const BundleEntry &entry) { return sum + entry.size; };
    const qint64 total = std::accumulate(manifest.entries.begin(), manifest.entries.end(), qint64{1}, add);
    qint64 done = 0;
    const auto onPiece = [&](std::size_t size) {
        if (watch.stop.stop_requested()) {
            throw CancellationError();
        }
        done += static_cast<qint64>(size);
        if (watch.progress) {
            watch.progress(static_cast<double>(done) / static_cast<double>(total));
        }
    };
    for (const BundleEntry &entry : manifest.entries) {
        if (!entry.isFolder && fileTree::digestOf(bundle, entry.path, onPiece) != entry.digest) {
            return false;
        }
    }
    return true;
}

/// Throws unless Info.json names the manifest's version: users see the one, and updates go by the other.
void checkVersion(int bundle, const QString &version) {
    const auto text = fileTree::content(bundle, bundleName::information, largestText);
    const QJsonObject information = QJsonDocument::fromJson(text.value_or(QByteArray())).object();
    if (information.value(QStringLiteral("CFBundleShortVersionString")).toString() != version) {
        throw FileError(QStringLiteral("%1 of the bundle does not name the version %2.")
                            .arg(QLatin1StringView(bundleName::information), version)
                            .toStdString());
    }
}

void writeSealing(int bundle, const char *name, const QByteArray &text) {
    fileTree::remove(bundle, name);
    const FileDescriptor file = fileTree::openBelow(bundle, name, O_WRONLY | O_CREAT | O_EXCL);
    fileTree::writeAll(file.get(), {text.constData(), static_cast<std::size_t>(text.size())});
    fileTree::checked(::fchmod(file.get(), plainFile), QStringLiteral("A mode could not be set"));
}
} // namespace

LinuxCodeSigning LinuxCodeSigning::ofBundle(const QString &bundle) {
    const auto read = [&bundle](const char *name) {
        QFile file(bundle + u'/' + QLatin1StringView(name));
        return file.open(QIODevice::ReadOnly) ? file.read(largestText) : QByteArray();
    };
    return LinuxCodeSigning(TrustedKeys::parsed(read(bundleName::keys)).after(read(bundleName::rotations)));
}

std::optional<SigningInformation> LinuxCodeSigning::signingInformation(const QString &bundle,
                                                                       const Watch &watch) const {
    try {
        const FileDescriptor folder = fileTree::openFolder(bundle);
        const std::optional<Manifest> manifest = signedManifest(folder.get(), m_keys);
        if (!manifest || manifest->identifier != applicationIdentifier ||
            manifest->architecture != hostArchitecture() ||
            contentsOf(folder.get()) != withoutDigests(manifest->entries) ||
            !digestsAgree(folder.get(), *manifest, watch)) {
            return std::nullopt;
        }
        return SigningInformation{manifest->team, manifest->identifier, manifest->version};
    } catch (const FileError &) {
        return std::nullopt;
    }
}

QString LinuxCodeSigning::hostArchitecture() {
    return QSysInfo::buildCpuArchitecture();
}

void signBundle(const QString &bundle, const QString &version, const SigningKey &key, const QString &architecture,
                const QString &identifier) {
    const FileDescriptor folder = fileTree::openFolder(bundle);
    fileTree::remove(folder.get(), bundleName::manifest);
    fileTree::remove(folder.get(), bundleName::signature);
    Manifest manifest{identifier, version, architecture, key.team(), contentsOf(folder.get())};
    for (BundleEntry &entry : manifest.entries) {
        if ((entry.mode & ~mode_t{0755}) != 0) {
            throw FileError(("The mode of " + entry.path + " lets others write it, or more.").toStdString());
        }
        entry.digest = entry.isFolder ? QByteArray() : fileTree::digestOf(folder.get(), entry.path);
    }
    checkVersion(folder.get(), version);
    const QByteArray text = manifest.written();
    if (!Manifest::parsed(text)) {
        throw FileError("A name in the bundle, its version or its team cannot be written into a manifest.");
    }
    writeSealing(folder.get(), bundleName::manifest, text);
    writeSealing(folder.get(), bundleName::signature, key.signatureOf(text).toBase64() + '\n');
}

} // namespace platform::desktop
