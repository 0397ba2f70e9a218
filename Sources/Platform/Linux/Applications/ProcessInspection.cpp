// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Applications/ProcessInspection.h"

#include "Platform/Linux/FileDescriptor.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::desktop::processes {

namespace {
constexpr qint64 longestFile = 1 << 18;

/// A process can put anything into a root folder of its own; a pipe that nobody writes to must not be waited for.
QByteArray contentOf(qint32 pid, const char *name, qint64 longest = longestFile) {
    const QByteArray path = "/proc/" + QByteArray::number(pid) + '/' + name;
    constexpr int withoutWaiting = O_NONBLOCK | O_NOCTTY | O_NOFOLLOW;
    const FileDescriptor descriptor(::open(path.constData(), O_RDONLY | O_CLOEXEC | withoutWaiting));
    struct stat status {};
    const bool isFile = descriptor && ::fstat(descriptor.get(), &status) == 0 && S_ISREG(status.st_mode);
    QFile file;
    const bool isOpen = isFile && file.open(descriptor.get(), QIODevice::ReadOnly | QIODevice::Unbuffered);
    return isOpen ? file.read(longest) : QByteArray();
}

QStringList decoded(const QByteArray &zeroSeparated) {
    QStringList texts;
    for (const QByteArray &text : zeroSeparated.split('\0')) {
        texts += QString::fromUtf8(text);
    }
    return texts;
}

/// The part of a text after a mark, up to the end of the line; empty without the mark.
QString restOfLine(const QByteArray &text, const QByteArray &mark) {
    const qsizetype at = ('\n' + text).indexOf('\n' + mark);
    if (at < 0) {
        return {};
    }
    const QByteArray rest = text.sliced(at + mark.size());
    return QString::fromUtf8(rest.first(std::max<qsizetype>(0, (rest + '\n').indexOf('\n'))));
}

/// The file that Flatpak puts at the root of every sandbox names its application.
QString flatpakName(qint32 pid) {
    return restOfLine(contentOf(pid, "root/.flatpak-info"), "name=");
}

QString snapName(const QString &executable) {
    for (const QString &root : {QStringLiteral("/snap/"), QStringLiteral("/var/lib/snapd/snap/")}) {
        if (executable.startsWith(root)) {
            return QStringLiteral("snap.") + executable.sliced(root.size()).section(u'/', 0, 0);
        }
    }
    return {};
}

bool isInterpreter(const QString &executable) {
    constexpr std::array beginnings{u"python", u"electron", u"node", u"perl", u"ruby", u"gjs", u"java"};
    const QString name = fileName(executable);
    return std::ranges::any_of(beginnings,
                               [&name](const char16_t *beginning) { return name.startsWith(QStringView(beginning)); });
}

/// The program that an interpreter runs: its first argument that is no option, or the module after Python's "-m". A
/// packed application is named after the folder it lies in.
QString scriptName(const QStringList &arguments) {
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == QStringLiteral("-m")) {
            return arguments.value(i + 1).section(u'.', 0, 0);
        }
        if (!arguments[i].isEmpty() && !arguments[i].startsWith(u'-')) {
            QStringList path = arguments[i].split(u'/', Qt::SkipEmptyParts);
            while (path.size() > 1 &&
                   (path.last() == QStringLiteral("app.asar") || path.last() == QStringLiteral("app") ||
                    path.last() == QStringLiteral("resources"))) {
                path.removeLast();
            }
            return path.isEmpty() ? QString() : path.last();
        }
    }
    return {};
}

/// The desktop entry that the process was started from; an inherited variable is about another process.
QString desktopEntry(qint32 pid) {
    QString entry;
    QString entryPid;
    for (const QString &variable : decoded(contentOf(pid, "environ"))) {
        const QString value = variable.section(u'=', 1);
        if (variable.startsWith(QStringLiteral("GIO_LAUNCHED_DESKTOP_FILE="))) {
            entry = fileName(value);
        } else if (variable.startsWith(QStringLiteral("GIO_LAUNCHED_DESKTOP_FILE_PID="))) {
            entryPid = value;
        }
    }
    constexpr QLatin1StringView suffix(".desktop");
    const bool isOwn = entryPid == QString::number(pid) && entry.endsWith(suffix);
    return isOwn ? entry.chopped(suffix.size()) : QString();
}
} // namespace

std::optional<Fingerprint> fingerprint(qint32 pid) {
    // The second field is the program's name in parentheses, which may itself hold spaces and parentheses.
    const QByteArray status = contentOf(pid, "stat", 1024);
    const QByteArrayList fields = status.sliced(status.lastIndexOf(')') + 1).simplified().split(' ');
    constexpr qsizetype state = 0;
    constexpr qsizetype parent = 1;
    constexpr qsizetype startTime = 19;
    if (pid <= 0 || fields.size() <= startTime || fields[state] == "Z" || fields[state] == "X") {
        return std::nullopt;
    }
    return Fingerprint{fields[startTime].toULongLong(), QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(pid)),
                       fields[parent].toInt()};
}

QString withoutDeletedMark(const QString &path) {
    constexpr QLatin1StringView mark(" (deleted)");
    return path.endsWith(mark) ? path.chopped(mark.size()) : path;
}

QString fileName(const QString &path) {
    return path.sliced(path.lastIndexOf(u'/') + 1);
}

QStringList names(qint32 pid, const Fingerprint &process) {
    const QString executable = withoutDeletedMark(process.executable);
    const QStringList arguments = decoded(contentOf(pid, "cmdline"));
    // Browsers write all arguments of their page processes into the first one.
    const QString startedAs = arguments.value(0).section(QStringLiteral(" --"), 0, 0);
    QStringList names{flatpakName(pid), snapName(executable), executable, fileName(executable), fileName(startedAs)};
    if (isInterpreter(executable)) {
        names += scriptName(arguments);
    }
    names += desktopEntry(pid);
    names.removeAll(QString());
    names.removeDuplicates();
    return names;
}

bool isHelper(const QString &executable) {
    constexpr std::array helpers{u"WebKitWebProcess", u"QtWebEngineProcess", u"bwrap", u"xdg-dbus-proxy"};
    const QString name = fileName(withoutDeletedMark(executable));
    return std::ranges::any_of(helpers, [&name](const char16_t *helper) { return name == QStringView(helper); });
}

} // namespace platform::desktop::processes
