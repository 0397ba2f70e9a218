// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Applications/DesktopEntries.h"

#include "Platform/Linux/Applications/ProcessInspection.h"
#include "Platform/Linux/Folders.h"

#include <QDateTime>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

namespace platform::desktop {

namespace {
constexpr QLatin1StringView suffix(".desktop");
constexpr qint64 largestEntry = 256 * 1024;

/// A program in the form that entries have it: in quotes or not, with arguments, perhaps behind "env NAME=VALUE".
QString programOf(const QString &command) {
    QString rest = command.trimmed();
    while (!rest.isEmpty()) {
        const bool isQuoted = rest.startsWith(u'"');
        const QString word = isQuoted ? rest.section(u'"', 1, 1) : rest.section(u' ', 0, 0);
        if (processes::fileName(word) != QStringLiteral("env") && (isQuoted || !word.contains(u'='))) {
            return word;
        }
        rest = rest.sliced(std::min(rest.size(), word.size() + (isQuoted ? 2 : 0))).trimmed();
    }
    return {};
}

QHash<QString, QString> valuesOf(const QByteArray &text) {
    QHash<QString, QString> values;
    bool isInMainGroup = false;
    for (const QByteArray &raw : text.split('\n')) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (line.startsWith(u'[')) {
            isInMainGroup = line == QStringLiteral("[Desktop Entry]");
        } else if (isInMainGroup && !line.startsWith(u'#')) {
            values.insert(line.section(u'=', 0, 0).trimmed(), line.section(u'=', 1).trimmed());
        }
    }
    return values;
}
} // namespace

std::optional<DesktopEntry> parseDesktopEntry(const QByteArray &text, const QString &locale) {
    const QHash<QString, QString> values = valuesOf(text);
    QString name = values.value(QStringLiteral("Name"));
    for (const QString &language : {locale.section(u'_', 0, 0), locale}) {
        name = values.value(QStringLiteral("Name[%1]").arg(language), name);
    }
    if (values.value(QStringLiteral("Type")) != QStringLiteral("Application") || name.isEmpty()) {
        return std::nullopt;
    }
    return DesktopEntry{name, programOf(values.value(QStringLiteral("Exec")))};
}

QStringList DesktopEntries::standardFolders() {
    QStringList bases{QFileInfo(folders::data()).path()};
    const QString shared = qEnvironmentVariable("XDG_DATA_DIRS");
    bases +=
        (shared.isEmpty() ? QStringLiteral("/usr/local/share:/usr/share") : shared).split(u':', Qt::SkipEmptyParts);
    for (QString &base : bases) {
        base += QStringLiteral("/applications");
    }
    return bases;
}

DesktopEntries::DesktopEntries(QStringList folders) : m_folders(std::move(folders)) {}

std::optional<QString> DesktopEntries::displayName(const QStringList &programNames) {
    refresh();
    for (const QString &name : programNames) {
        if (const auto found = m_names.find(name); found != m_names.end()) {
            return *found;
        }
    }
    return std::nullopt;
}

void DesktopEntries::refresh() {
    QList<qint64> times;
    for (const QString &folder : m_folders) {
        const QFileInfo info(folder);
        times += info.exists() ? info.lastModified().toMSecsSinceEpoch() : 0;
    }
    if (times == m_folderTimes) {
        return;
    }
    m_folderTimes = times;
    m_names.clear();
    QHash<QString, QString> programs;
    for (const QString &folder : m_folders) {
        QDirIterator files(folder, {QStringLiteral("*.desktop")}, QDir::Files);
        while (files.hasNext()) {
            QFile file(files.next());
            const auto entry = file.open(QIODevice::ReadOnly)
                                   ? parseDesktopEntry(file.read(largestEntry), QLocale::system().name())
                                   : std::nullopt;
            const QString id = files.fileName().chopped(suffix.size());
            if (!entry || m_names.contains(id)) {
                continue;
            }
            m_names.insert(id, entry->name);
            for (const QString &program : {entry->program, processes::fileName(entry->program)}) {
                programs.insert(program, programs.value(program, entry->name));
            }
        }
    }
    // A desktop id says more than the name of a program.
    for (auto program = programs.cbegin(); program != programs.cend(); ++program) {
        m_names.insert(program.key(), m_names.value(program.key(), program.value()));
    }
}

} // namespace platform::desktop
