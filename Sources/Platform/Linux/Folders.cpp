// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Folders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::desktop::folders {

namespace {
QString userHome() {
    QString home = qEnvironmentVariable("HOME");
    if (QDir::isAbsolutePath(home)) {
        return home;
    }
    const passwd *const user = ::getpwuid(::getuid());
    return user == nullptr ? QStringLiteral("/nonexistent") : QFile::decodeName(user->pw_dir);
}

/// A relative path in one of these variables counts as none, as everywhere on the desktop.
QString base(const char *variable, const char *standard) {
    const QString path = qEnvironmentVariable(variable);
    return QDir::cleanPath(QDir::isAbsolutePath(path) ? path : userHome() + QLatin1StringView(standard));
}
} // namespace

QString configuration() {
    return base("XDG_CONFIG_HOME", "/.config") + QStringLiteral("/quillory");
}

QString data() {
    return base("XDG_DATA_HOME", "/.local/share") + QStringLiteral("/quillory");
}

bool make(const QString &path) {
    const QByteArray name = QFile::encodeName(path);
    if (::mkdir(name.constData(), S_IRWXU) != 0 && errno == ENOENT && make(QFileInfo(path).path())) {
        ::mkdir(name.constData(), S_IRWXU);
    }
    return QFileInfo(path).isDir(); // another process may have been faster
}

} // namespace platform::desktop::folders
