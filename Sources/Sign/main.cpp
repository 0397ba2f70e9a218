// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The maintainer's tool for making keys, signing bundles and replacing keys. Docs/releasing.md says when to use it.
#include "Platform/FileError.h"
#include "Platform/Linux/FileDescriptor.h"
#include "Platform/Linux/Updates/FileTree.h"
#include "Platform/Linux/Updates/LinuxCodeSigning.h"
#include "Quillory/Updates/VersionHistory.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <iostream>
#include <sys/stat.h>

namespace {

namespace desktop = platform::desktop;

const QString expectedTeam = QStringLiteral(QUILLORY_TEAM_ID);

constexpr auto usage = R"(Usage:
  quillory-sign make-key TEAM KEYFILE          make a secret key and print the line for Packaging/UpdateKeys
  quillory-sign show-key KEYFILE               print that line again
  quillory-sign sign KEYFILE VERSION BUNDLE    write the bundle's manifest and sign it
  quillory-sign verify BUNDLE [--as PREVIOUS]  verify a bundle by its own keys or, as an installed program will, by
                                               those in the previous release's bundle
  quillory-sign rotate OLDKEYFILE NEWKEYFILE   print the statement for Packaging/UpdateKeys.rotations

TEAM is 10 upper-case letters and digits. Bundles are only signed for the team whose updates this build takes.
A key file is secret: keep it out of the repository and off the web.
)";

desktop::SigningKey readKey(const QString &path) {
    QFile file(path);
    const auto key = file.open(QIODevice::ReadOnly) ? desktop::SigningKey::parsed(file.read(4096)) : std::nullopt;
    if (!key) {
        throw platform::FileError(path.toStdString() + " is not a readable key file.");
    }
    return *key;
}

int printLine(const desktop::SigningKey &key) {
    std::cout << desktop::TrustedKeys::line(key.team(), key.publicKey()).constData();
    return 0;
}

int makeKey(const QString &team, const QString &path) {
    static const QRegularExpression form(QStringLiteral("^[A-Z0-9]{10}$"));
    if (!form.match(team).hasMatch()) {
        throw platform::FileError("TEAM must be 10 upper-case letters and digits.");
    }
    const auto key = desktop::SigningKey::generated(team);
    const QByteArray text = key.written();
    const desktop::FileDescriptor file(desktop::fileTree::checked(
        ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR),
        QStringLiteral("%1 could not be made").arg(path)));
    desktop::fileTree::writeAll(file.get(), {text.constData(), static_cast<std::size_t>(text.size())});
    return printLine(key);
}

/// A program takes updates only from the team that it was built with, whatever keys its bundle names.
void checkTeam(const QString &team) {
    if (team != expectedTeam) {
        throw platform::FileError(
            QStringLiteral("This build takes updates of the team %1 only, not of %2. To change that, "
                           "set QUILLORY_TEAM_ID in the environment of ./dev.")
                .arg(expectedTeam, team)
                .toStdString());
    }
}

void sign(const QString &keyFile, const QString &version, const QString &bundle) {
    const auto key = readKey(keyFile);
    checkTeam(key.team());
    desktop::signBundle(bundle, version, key);
}

/// Throws unless users of the previous release can install this one.
void checkSuccession(const platform::SigningInformation &next, const QString &previousBundle) {
    const auto previous = desktop::LinuxCodeSigning::ofBundle(previousBundle).signingInformation(previousBundle, {});
    if (!previous) {
        throw platform::FileError(previousBundle.toStdString() + " is not a signed release for this machine.");
    }
    checkTeam(previous->teamIdentifier);
    if (!quillory::isNewer(next.version, previous->version)) {
        throw platform::FileError(
            QStringLiteral("Version %1 is not newer than %2, so no installed program would take it.")
                .arg(next.version, previous->version)
                .toStdString());
    }
}

int verify(const QString &bundle, const QString &previous) {
    const bool isUpdate = !previous.isEmpty();
    const auto found = desktop::LinuxCodeSigning::ofBundle(isUpdate ? previous : bundle).signingInformation(bundle, {});
    if (!found) {
        std::cerr << "not signed by a key that " << (isUpdate ? "the previous release trusts" : "it names itself")
                  << ", changed since, or not for this machine\n";
        return 1;
    }
    checkTeam(found->teamIdentifier);
    if (isUpdate) {
        checkSuccession(*found, previous);
    }
    std::cout << "team " << found->teamIdentifier.toStdString() << ", version " << found->version.toStdString() << '\n';
    return 0;
}

int rotate(const QString &oldFile, const QString &newFile) {
    const auto newKey = readKey(newFile);
    const auto oldKey = readKey(oldFile);
    if (newKey.team() != oldKey.team()) {
        throw platform::FileError("The two keys belong to different teams.");
    }
    std::cout << desktop::rotationStatement(oldKey, newKey.publicKey()).constData();
    return 0;
}

int run(const QStringList &arguments) {
    const QString command = arguments.value(0);
    const auto is = [&](const char *name, qsizetype count) {
        return command == QLatin1StringView(name) && arguments.size() == count + 1;
    };
    if (is("make-key", 2)) {
        return makeKey(arguments.at(1), arguments.at(2));
    }
    if (is("show-key", 1)) {
        return printLine(readKey(arguments.at(1)));
    }
    if (is("sign", 3)) {
        sign(arguments.at(1), arguments.at(2), arguments.at(3));
        return 0;
    }
    if (is("verify", 1) || (is("verify", 3) && arguments.at(2) == QStringLiteral("--as"))) {
        return verify(arguments.at(1), arguments.value(3));
    }
    if (is("rotate", 2)) {
        return rotate(arguments.at(1), arguments.at(2));
    }
    std::cerr << usage;
    return 2;
}

} // namespace

int main(int argc, char **argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    try {
        return run(arguments);
    } catch (const platform::FileError &error) {
        std::cerr << "quillory-sign: " << error.what() << '\n';
        return 1;
    }
}
