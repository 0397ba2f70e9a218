// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/OwnProgram.h"

#include "Platform/Linux/Applications/ProcessInspection.h"

#include <QFileInfo>

namespace platform::desktop::ownProgram {

namespace {
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

QString path(const QString &running) {
    const QString named = processes::withoutDeletedMark(running);
    if (named == running || QFileInfo::exists(running)) {
        return running;
    }
    const QString updated = applicationsFolder() + QStringLiteral("Quillory.app/quillory");
    return !QFileInfo::exists(named) && isUsersOwn(named) && QFileInfo::exists(updated) ? updated : named;
}

QString atLogin(const QString &own, const QString &packaged) {
    const QFileInfo found(packaged);
    return isUsersOwn(own) && found.isFile() && found.isExecutable() ? packaged : own;
}

} // namespace platform::desktop::ownProgram
