// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Updates/SampleBundle.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <algorithm>
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

QByteArray readFile(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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
    platform::desktop::signBundle(path, QString::number(version), LinuxCodeSigning::hostArchitecture(), key);
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

/// Without the length, the head and the checksum that the toolkit puts around it.
QByteArray deflated(const QByteArray &content) {
    return qCompress(content, 9).sliced(6).chopped(4);
}
} // namespace

void ZipWriter::add(const Item &item) {
    const QByteArray data = item.isCompressed ? deflated(item.content) : item.content;
    const QByteArray common = little<quint16>(0x800) + little<quint16>(item.isCompressed ? 8 : 0) + little<quint32>(0) +
                              little(checksum(item.content)) + little(static_cast<quint32>(data.size())) +
                              little(static_cast<quint32>(item.content.size())) +
                              little(static_cast<quint16>(item.name.size())) + little<quint16>(0);
    constexpr quint16 madeOnUnix = 0x314;
    m_directory += "PK\x01\x02" + little(madeOnUnix) + little<quint16>(20) + common + little<quint16>(0) +
                   little<quint32>(0) + little(item.mode << 16) + little(static_cast<quint32>(m_files.size())) +
                   item.name;
    m_files += "PK\x03\x04" + little<quint16>(20) + common + item.name + data;
    ++m_count;
}

QByteArray ZipWriter::bytes() const {
    const auto count = static_cast<quint16>(m_count);
    return m_files + m_directory + "PK\x05\x06" + little<quint32>(0) + little(count) + little(count) +
           little(static_cast<quint32>(m_directory.size())) + little(static_cast<quint32>(m_files.size())) +
           little<quint16>(0);
}

QByteArray zipOf(const QString &folder, const QByteArray &name) {
    QStringList paths;
    for (QDirIterator files(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                            QDirIterator::Subdirectories);
         files.hasNext();) {
        paths += files.next();
    }
    std::ranges::sort(paths);
    ZipWriter zip;
    for (const QString &path : paths) {
        struct stat status {};
        ::stat(QFile::encodeName(path).constData(), &status);
        const bool isFolder = S_ISDIR(status.st_mode);
        zip.add({name + QFile::encodeName(path.sliced(folder.size())) + (isFolder ? "/" : ""),
                 isFolder ? QByteArray() : readFile(path), status.st_mode, !isFolder});
    }
    return zip.bytes();
}

} // namespace quillory::test
