// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/UpdateChecker.h"
#include "Quillory/UpdateState.h"

#include <QDir>
#include <QSaveFile>

namespace quillory::versionHistory {

namespace {
QString versionFolder() {
    return platform::current().process.homeDirectory() + QStringLiteral("/Library/Application Support/Quillory");
}

QString versionFile() {
    return versionFolder() + QStringLiteral("/highest-version");
}
} // namespace

QString highest() {
    constexpr qint64 longest = 256;
    QFile file(versionFile());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(longest)).trimmed() : QStringLiteral("0");
}

void remember(const QString &version) {
    if (!UpdateChecker::isNewer(version, highest())) {
        return;
    }
    QDir().mkpath(versionFolder());
    QSaveFile file(versionFile());
    if (file.open(QIODevice::WriteOnly)) {
        file.write(version.toUtf8() + '\n');
        file.commit(); // what cannot be written is no reason not to run
    }
}

} // namespace quillory::versionHistory
