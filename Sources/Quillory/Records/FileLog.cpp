// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Records/FileLog.h"

#include <QDateTime>
#include <QFile>
#include <QLocale>

namespace quillory::FileLog {

namespace {
/// The only global state of the program: any unit may have a failure to log.
QString path;
} // namespace

void open(const QString &homeDirectory) {
    path = homeDirectory + QStringLiteral("/Library/Logs/Quillory.log");
}

bool append(const QString &file, const QByteArray &bytes) {
    QFile appended(file);
    return appended.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered) &&
           appended.write(bytes) == bytes.size();
}

void log(const QString &message) {
    if (path.isEmpty()) {
        return;
    }
    static const QLocale locale = QLocale::system();
    const QString time = locale.toString(QTime::currentTime(), QStringLiteral("HH:mm:ss.zzz"));
    append(path, (time + u' ' + message + u'\n').toUtf8());
}

} // namespace quillory::FileLog
