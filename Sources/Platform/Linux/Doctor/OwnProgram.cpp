// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/OwnProgram.h"

#include "Platform/Linux/Updates/UserApplications.h"

#include <QFile>
#include <QFileInfo>

namespace platform::desktop::ownProgram {

namespace {
/// What the system adds to the name of a file that has none any more.
const QString removedMark = QStringLiteral(" (deleted)");

/// Without symbolic links, as in /proc. Empty when there is no such folder.
QString applicationsFolder() {
    const QString folder = QFileInfo(applications::folder()).canonicalFilePath();
    return folder.isEmpty() ? folder : folder + u'/';
}

bool isUsersOwn(const QString &program) {
    const QString folder = applicationsFolder();
    return !folder.isEmpty() && program.startsWith(folder);
}
} // namespace

QString executable() {
    return QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
}

QString path(const QString &running) {
    if (!running.endsWith(removedMark) || QFileInfo::exists(running)) {
        return running;
    }
    const QString named = running.chopped(removedMark.size());
    const QString updated = applicationsFolder() + QStringLiteral("Quillory.app/quillory");
    return !QFileInfo::exists(named) && isUsersOwn(named) && QFileInfo::exists(updated) ? updated : named;
}

QString atLogin(const QString &own, const QString &packaged) {
    const QFileInfo found(packaged);
    return isUsersOwn(own) && found.isFile() && found.isExecutable() ? packaged : own;
}

} // namespace platform::desktop::ownProgram
