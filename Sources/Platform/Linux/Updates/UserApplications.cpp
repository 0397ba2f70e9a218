// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Updates/UserApplications.h"

#include "Platform/Linux/Folders.h"
#include "Platform/Linux/Updates/BundleInstaller.h"
#include "Platform/Linux/Updates/FileTree.h"
#include "Platform/Linux/Updates/LinuxCodeSigning.h"

#include <QFile>
#include <QFileInfo>

namespace platform::desktop::applications {

namespace {
const QString programFolder = QStringLiteral("/Applications/");
constexpr auto bundleFolder = "Quillory.app";
constexpr qint64 largestBundleManifest = 8 << 20;

/// The version that the running bundle's manifest states. Nobody has to vouch for it: its program runs already.
QString ownVersion(const QString &bundle) {
    const FileDescriptor opened = fileTree::openFolder(bundle);
    const auto text = fileTree::content(opened.get(), bundleName::manifest, largestBundleManifest);
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

QString runningBundle() {
    return QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).path();
}

QByteArray programToPrefer(const QString &running,
                           const std::function<bool(const QString &, const QString &)> &isNewer) {
    const QString own = folder() + u'/' + QLatin1StringView(bundleFolder);
    BundleInstaller(folder()).recover(bundleFolder);
    try {
        const QString version = ownVersion(running);
        if (version.isEmpty() || !QFileInfo::exists(own) ||
            QFileInfo(own).canonicalFilePath() == QFileInfo(running).canonicalFilePath()) {
            return {};
        }
        const auto found = LinuxCodeSigning::ofBundle(running).signingInformation(own, {});
        return found && isNewer(found->version, version)
                   ? QFile::encodeName(own + u'/' + QLatin1StringView(bundleName::program))
                   : QByteArray();
    } catch (const FileError &) {
        return {};
    }
}

} // namespace platform::desktop::applications
