// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Updates/UpdateChecker.h"
#include "Quillory/Updates/UpdateState.h"

#include <QDir>
#include <QSaveFile>

namespace quillory::versionHistory {

namespace {
QString versionFolder(const QString &home) {
    return home + QStringLiteral("/Library/Application Support/Quillory");
}

QString versionFile(const QString &home) {
    return versionFolder(home) + QStringLiteral("/highest-version");
}
} // namespace

QString highest(const QString &home) {
    constexpr qint64 longest = 256;
    QFile file(versionFile(home));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(longest)).trimmed() : QStringLiteral("0");
}

void remember(const QString &version, const QString &home) {
    if (!UpdateChecker::isNewer(version, highest(home))) {
        return;
    }
    QDir().mkpath(versionFolder(home));
    QSaveFile file(versionFile(home));
    if (file.open(QIODevice::WriteOnly)) {
        file.write(version.toUtf8() + '\n');
        file.commit(); // what cannot be written is no reason not to run
    }
}

} // namespace quillory::versionHistory
