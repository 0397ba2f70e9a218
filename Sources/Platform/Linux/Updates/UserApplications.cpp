// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/UserApplications.h"

#include "Platform/Linux/Folders.h"
#include "Platform/Linux/Updates/BundleInstaller.h"
#include "Platform/Linux/Updates/FileTree.h"
#include "Platform/Linux/Updates/LinuxCodeSigning.h"
#include "Platform/Linux/Updates/ProgramTrial.h"

#include <QFile>
#include <QFileInfo>

namespace platform::desktop::applications {

namespace {
const QString programFolder = QStringLiteral("/Applications/");
constexpr auto bundleFolder = "Quillory.app";
/// A healthy program answers in hundredths of a second, and it then starts faster, with its libraries in memory.
constexpr auto startPatience = std::chrono::seconds(3);

/// The version in the running bundle's manifest. The signature does not matter: its program is running already.
QString ownVersion(const QString &bundle) {
    const FileDescriptor opened = fileTree::openFolder(bundle);
    const auto text = fileTree::content(opened.get(), bundleName::manifest, largestManifest);
    const auto manifest = text ? Manifest::parsed(*text) : std::nullopt;
    return manifest ? manifest->version : QString();
}
} // namespace

QString folder() {
    return folders::data() + QStringLiteral("/Applications");
}

QString resolved(const QString &path) {
    return path.startsWith(programFolder) ? folders::data() + path : path;
}

QString runningProgram() {
    return QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
}

QString runningBundle() {
    return QFileInfo(runningProgram()).path();
}

QByteArray programToPrefer(const QString &running, const Precedence &takesPrecedence) {
    const QString own = folder() + u'/' + QLatin1StringView(bundleFolder);
    const LinuxCodeSigning signing = LinuxCodeSigning::ofBundle(running);
    BundleInstaller(folder(), signing).recover(bundleFolder);
    try {
        const QString version = ownVersion(running);
        if (version.isEmpty() || !QFileInfo::exists(own) ||
            QFileInfo(own).canonicalFilePath() == QFileInfo(running).canonicalFilePath()) {
            return {};
        }
        folders::checkOwn(folder());
        folders::checkOwn(own);
        const auto found = signing.signingInformation(own, {});
        return found && takesPrecedence(*found, version) && canStart(own, startPatience)
                   ? QFile::encodeName(own + u'/' + QLatin1StringView(bundleName::program))
                   : QByteArray();
    } catch (const FileError &) {
        return {};
    }
}

} // namespace platform::desktop::applications
