// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Applications/DesktopEntries.h"

#include "Platform/Linux/Folders.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

namespace platform::desktop {

namespace {
constexpr qint64 largestEntry = 1 << 18;

/// The value of a line "key=value"; absent for another key.
std::optional<QByteArrayView> valueOf(QByteArrayView line, const QByteArray &key) {
    if (!line.startsWith(key) || !line.sliced(key.size()).trimmed().startsWith('=')) {
        return std::nullopt;
    }
    return line.sliced(line.indexOf('=') + 1).trimmed();
}
} // namespace

std::optional<QString> nameInDesktopEntry(const QByteArray &entry, const QString &locale) {
    const QByteArray language = locale.section(u'_', 0, 0).toLatin1();
    const QByteArray keys[]{"Name", "Name[" + language + ']', "Name[" + locale.toLatin1() + ']'};
    QByteArrayView names[std::size(keys)];
    bool isInMainGroup = false;
    bool isApplication = false;
    for (qsizetype at = 0, end = 0; at < entry.size(); at = end + 1) {
        end = entry.indexOf('\n', at);
        end = end < 0 ? entry.size() : end;
        const QByteArrayView line = QByteArrayView(entry).sliced(at, end - at).trimmed();
        if (line.startsWith('[')) {
            isInMainGroup = line == "[Desktop Entry]";
        }
        if (!isInMainGroup) {
            continue;
        }
        isApplication = isApplication || valueOf(line, "Type") == QByteArrayView("Application");
        for (std::size_t i = 0; i < std::size(keys); ++i) {
            names[i] = valueOf(line, keys[i]).value_or(names[i]);
        }
    }
    for (const QByteArrayView name : {names[2], names[1], names[0]}) {
        if (isApplication && !name.isEmpty()) {
            return QString::fromUtf8(name);
        }
    }
    return std::nullopt;
}

QStringList DesktopEntries::standardFolders() {
    QStringList bases{QFileInfo(folders::data()).path()};
    const QString shared = qEnvironmentVariable("XDG_DATA_DIRS");
    bases +=
        (shared.isEmpty() ? QStringLiteral("/usr/local/share:/usr/share") : shared).split(u':', Qt::SkipEmptyParts);
    for (QString &base : bases) {
        base += QStringLiteral("/applications/");
    }
    return bases;
}

std::optional<QString> DesktopEntries::displayName(const QStringList &ids) const {
    for (const QString &id : ids) {
        for (const QString &folder : m_folders) {
            QFile file(folder + id + QStringLiteral(".desktop"));
            if (id.contains(u'/') || !file.open(QIODevice::ReadOnly)) {
                continue;
            }
            if (auto name = nameInDesktopEntry(file.read(largestEntry), QLocale::system().name())) {
                return name;
            }
        }
    }
    return std::nullopt;
}

} // namespace platform::desktop
