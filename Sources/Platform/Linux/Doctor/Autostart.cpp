// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/Autostart.h"

#include "Platform/Linux/Doctor/OwnProgram.h"
#include "Platform/Linux/Folders.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace platform::desktop::autostart {

namespace {

QString entryPath() {
    return QFileInfo(folders::configuration()).path() + QStringLiteral("/autostart/quillory.desktop");
}

/// A path as a quoted argument in a desktop entry. Desktops undo backslashes twice, first for the string and then for
/// the quotes, and take "%" for the beginning of a field code.
QByteArray quoted(const QString &path) {
    QString text = path;
    for (const QString &special :
         {QStringLiteral("\\"), QStringLiteral("\""), QStringLiteral("`"), QStringLiteral("$")}) {
        text.replace(special, u'\\' + special);
    }
    text.replace(u'\\', QStringLiteral("\\\\")).replace(u'%', QStringLiteral("%%"));
    return '"' + text.toUtf8() + '"';
}

QByteArray entry() {
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Quillory\n"
           "Comment=Better wording while you write to customers\n"
           "Exec=" +
           quoted(ownProgram::atLogin(ownProgram::path())) +
           "\n"
           "Icon=quillory\n"
           "Terminal=false\n"
           "X-GNOME-Autostart-enabled=true\n";
}

} // namespace

bool isOn() {
    QFile file(entryPath());
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    // Desktops switch an entry off in one of these two ways.
    constexpr qint64 longest = 64 * 1024;
    const QByteArray text = '\n' + file.read(longest) + '\n';
    return !text.contains("\nHidden=true\n") && !text.contains("\nX-GNOME-Autostart-enabled=false\n");
}

bool set(bool on) {
    const QString path = entryPath();
    if (!on) {
        return !QFileInfo::exists(path) || QFile::remove(path);
    }
    QSaveFile file(path);
    return folders::make(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) && file.write(entry()) > 0 &&
           file.commit();
}

} // namespace platform::desktop::autostart
