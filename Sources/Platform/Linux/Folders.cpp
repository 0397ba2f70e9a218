// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Folders.h"

#include "Platform/FileError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/xattr.h>
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

/// A relative path in one of these variables is ignored, as the XDG standard asks.
QString base(const char *variable, const char *standard) {
    const QString path = qEnvironmentVariable(variable);
    return QDir::cleanPath(QDir::isAbsolutePath(path) ? path : userHome() + QLatin1StringView(standard));
}

[[noreturn]] void refuse(const QString &sentence, const QString &folder) {
    throw FileError(sentence.arg(folder).toStdString());
}

struct stat statusOf(const QString &folder) {
    struct stat status {};
    if (::stat(QFile::encodeName(folder).constData(), &status) != 0) {
        refuse(QStringLiteral("The folder %1 could not be read."), folder);
    }
    return status;
}

/// Whether the user is alone in a folder's group: on many systems the group that is named after a user has no other
/// members. With an access control list the group's bits mean something else.
bool isPrivateGroup(const QString &folder) {
    const bool hasList = ::getxattr(QFile::encodeName(folder).constData(), "system.posix_acl_access", nullptr, 0) > 0;
    // Names last: they may have to come from a server.
    return !hasList && QFileInfo(folder).group() == QFileInfo(folder).owner();
}

bool canOthersReplaceIn(const QString &folder) {
    const struct stat status = statusOf(folder);
    if (status.st_uid != ::geteuid() && status.st_uid != 0) {
        return true;
    }
    if ((status.st_mode & S_ISVTX) != 0 || (status.st_mode & (S_IWOTH | S_IWGRP)) == 0) {
        return false;
    }
    return (status.st_mode & S_IWOTH) != 0 || !isPrivateGroup(folder);
}

} // namespace

QString configuration() {
    return base("XDG_CONFIG_HOME", "/.config") + QStringLiteral("/quillory");
}

QString data() {
    return base("XDG_DATA_HOME", "/.local/share") + QStringLiteral("/quillory");
}

QString runtime() {
    const QString path = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QFileInfo folder(path);
    return QDir::isAbsolutePath(path) && folder.isDir() && folder.isWritable() ? path + QStringLiteral("/quillory")
                                                                               : data();
}

bool make(const QString &path) {
    const QByteArray name = QFile::encodeName(path);
    if (::mkdir(name.constData(), S_IRWXU) != 0 && errno == ENOENT && make(QFileInfo(path).path())) {
        ::mkdir(name.constData(), S_IRWXU);
    }
    return QFileInfo(path).isDir(); // another process may have been faster
}

QString temporary() {
    QString folder = QDir::tempPath();
    checkPlace(folder);
    return folder;
}

void checkPlace(const QString &folder) {
    // Both as it is named and as it resolves: changing a link on the way would lead elsewhere.
    for (QString path : {QFileInfo(folder).absoluteFilePath(), QFileInfo(folder).canonicalFilePath()}) {
        for (; !path.isEmpty() && path != QStringLiteral("/"); path = QFileInfo(path).path()) {
            if (canOthersReplaceIn(path)) {
                refuse(QStringLiteral("The folder %1 can be changed by others."), path);
            }
        }
    }
}

void checkOwn(const QString &folder) {
    checkPlace(folder);
    const struct stat status = statusOf(folder);
    if (status.st_uid != ::geteuid() || (status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        refuse(QStringLiteral("The folder %1 can be changed by others."), folder);
    }
}

} // namespace platform::desktop::folders
