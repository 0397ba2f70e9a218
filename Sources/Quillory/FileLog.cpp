// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/FileLog.h"

#include "Platform/Platform.h"
#include "Quillory/AppendLine.h"

#include <QDateTime>
#include <QLocale>

namespace quillory::FileLog {

void log(const QString &message) {
    const QString path = platform::current().process.homeDirectory() + QStringLiteral("/Library/Logs/Quillory.log");
    const QString time = QLocale::system().toString(QTime::currentTime(), QStringLiteral("HH:mm:ss.zzz"));
    appendToFile(path, (time + u' ' + message + u'\n').toUtf8());
}

} // namespace quillory::FileLog
