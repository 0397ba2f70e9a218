// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/Autostart.h"

#include "Platform/Linux/Applications/ProcessInspection.h"
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
    for (const QChar special : {u'\\', u'"', u'`', u'$'}) {
        text.replace(special, QString(u'\\') + special);
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
           quoted(programAtLogin()) +
           "\n"
           "Icon=quillory\n"
           "Terminal=false\n"
           "X-GNOME-Autostart-enabled=true\n";
}

/// The folder of the user's own copy, without symbolic links, as in /proc. Empty when there is none.
QString ownFolder() {
    const QString folder = QFileInfo(applications::folder()).canonicalFilePath();
    return folder.isEmpty() ? folder : folder + u'/';
}

bool isUsersOwn(const QString &path) {
    const QString folder = ownFolder();
    return !folder.isEmpty() && path.startsWith(folder);
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

QString program(const QString &running) {
    const QString named = processes::withoutDeletedMark(running);
    if (named == running || QFileInfo::exists(running)) {
        return running;
    }
    const QString updated = ownFolder() + QStringLiteral("Quillory.app/quillory");
    return !QFileInfo::exists(named) && isUsersOwn(named) && QFileInfo::exists(updated) ? updated : named;
}

QString programAtLogin(const QString &own, const QString &packaged) {
    const QFileInfo found(packaged);
    return isUsersOwn(own) && found.isFile() && found.isExecutable() ? packaged : own;
}

} // namespace platform::desktop::autostart
