// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Updates/SampleBundle.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <cstdlib>
#include <stdexcept>
#include <sys/stat.h>

namespace quillory::test {

using namespace Qt::StringLiterals;

using platform::desktop::LinuxCodeSigning;
using platform::desktop::SigningKey;
using platform::desktop::TrustedKeys;

const SigningKey &teamKey() {
    static const SigningKey key = SigningKey::generated(team);
    return key;
}

LinuxCodeSigning trustingTeam() {
    TrustedKeys keys;
    keys.add(team, teamKey().publicKey());
    return LinuxCodeSigning(keys);
}

QString folderTemplate() {
    const QString memory = u"/dev/shm"_s;
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) + u"/quillory-XXXXXX"_s;
}

void writeFile(const QString &path, const QByteArray &bytes, unsigned mode) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        throw std::runtime_error("cannot write " + path.toStdString());
    }
    file.close();
    ::chmod(QFile::encodeName(path).constData(), mode);
}

void makeBundle(const QString &path, int version) {
    const QString resources = path + u"/Resources/icons"_s;
    QDir().mkpath(resources);
    for (const QString &folder : {path, path + u"/Resources"_s, resources}) {
        ::chmod(QFile::encodeName(folder).constData(), 0755);
    }
    const QByteArray number = QByteArray::number(version);
    writeFile(path + u"/quillory"_s, "#!/bin/sh\n[ \"$1\" = --version ] || exit " + number + '\n', 0755);
    writeFile(path + u"/Info.json"_s, R"({"CFBundleShortVersionString": ")" + number + "\"}\n");
    writeFile(path + u"/UpdateKeys"_s, TrustedKeys::line(team, teamKey().publicKey()));
    writeFile(resources + u"/quillory.svg"_s, QByteArray(10'000, 'x'));
}

void makeSignedBundle(const QString &path, int version, const SigningKey &key) {
    makeBundle(path, version);
    platform::desktop::signBundle(path, QString::number(version), key);
}

std::string vouchedVersion(const QString &bundle) {
    const auto found = trustingTeam().signingInformation(bundle, {});
    return found && found->teamIdentifier == team ? found->version.toStdString() : "none";
}

int started(const QString &bundle) {
    const int status = std::system(QFile::encodeName(bundle + u"/quillory"_s).constData());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

namespace {
template <typename Number> QByteArray little(Number number) {
    QByteArray bytes(sizeof(Number), '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

quint32 checksum(const QByteArray &bytes) {
    quint32 sum = 0xFFFFFFFF;
    for (const char byte : bytes) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xEDB88320 : 0);
        }
    }
    return ~sum;
}

} // namespace

QByteArray zipWith(const std::vector<ZipItem> &items) {
    constexpr quint16 madeOnUnix = 0x314;
    QByteArray files;
    QByteArray directory;
    for (const auto &[name, content, mode, isCompressed] : items) {
        // Without the length, the head and the checksum that Qt puts around it.
        const QByteArray data = isCompressed ? qCompress(content, 9).sliced(6).chopped(4) : content;
        const QByteArray common = little<quint16>(0x800) + little<quint16>(isCompressed ? 8 : 0) + little<quint32>(0) +
                                  little(checksum(content)) + little(static_cast<quint32>(data.size())) +
                                  little(static_cast<quint32>(content.size())) +
                                  little(static_cast<quint16>(name.size())) + little<quint16>(0);
        directory += "PK\x01\x02" + little(madeOnUnix) + little<quint16>(20) + common + little<quint16>(0) +
                     little<quint32>(0) + little(mode << 16) + little(static_cast<quint32>(files.size())) + name;
        files += "PK\x03\x04" + little<quint16>(20) + common + name + data;
    }
    const QByteArray count = little(static_cast<quint16>(items.size()));
    return files + directory + "PK\x05\x06" + little<quint32>(0) + count + count +
           little(static_cast<quint32>(directory.size())) + little(static_cast<quint32>(files.size())) +
           little<quint16>(0);
}

QByteArray zipOf(const QString &folder, const QByteArray &name) {
    std::vector<ZipItem> items;
    for (QDirIterator files(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                            QDirIterator::Subdirectories);
         files.hasNext();) {
        const QString path = files.next();
        struct stat status {};
        ::stat(QFile::encodeName(path).constData(), &status);
        const bool isFolder = S_ISDIR(status.st_mode);
        items.push_back({name + QFile::encodeName(path.sliced(folder.size())) + (isFolder ? "/" : ""),
                         isFolder ? QByteArray() : contentOf(path), status.st_mode, !isFolder});
    }
    return zipWith(items);
}

} // namespace quillory::test
