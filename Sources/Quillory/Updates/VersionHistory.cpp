// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Updates/VersionHistory.h"

#include <QDir>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStringList>

#include <algorithm>

namespace quillory {

namespace {
qint64 versionNumber(const QString &component) {
    static const QRegularExpression form(QRegularExpression::anchoredPattern(QStringLiteral("[+-]?[0-9]+")));
    return form.match(component).hasMatch() ? component.toLongLong() : 0;
}
} // namespace

bool isNewer(const QString &version, const QString &than) {
    const QStringList left = version.split(u'.', Qt::SkipEmptyParts);
    const QStringList right = than.split(u'.', Qt::SkipEmptyParts);
    for (qsizetype i = 0; i < std::max(left.size(), right.size()); ++i) {
        const qint64 number = versionNumber(left.value(i));
        const qint64 otherNumber = versionNumber(right.value(i));
        if (number != otherNumber) {
            return number > otherNumber;
        }
    }
    return false;
}

VersionHistory::VersionHistory(const QString &homeDirectory)
    : m_folder(homeDirectory + QStringLiteral("/Library/Application Support/Quillory")),
      m_file(m_folder + QStringLiteral("/highest-version")) {}

QString VersionHistory::highest() const {
    constexpr qint64 longest = 256;
    QFile file(m_file);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(longest)).trimmed() : QStringLiteral("0");
}

void VersionHistory::remember(const QString &version) const {
    QSaveFile file(m_file);
    if (isNewer(version, highest()) && QDir().mkpath(m_folder) && file.open(QIODevice::WriteOnly)) {
        file.write(version.toUtf8() + '\n');
        file.commit();
    }
}

bool VersionHistory::permits(const QString &version, const QString &running) const {
    return isNewer(version, running) && !isNewer(highest(), version);
}

} // namespace quillory
