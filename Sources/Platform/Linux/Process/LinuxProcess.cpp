// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Process/LinuxProcess.h"

#include "Platform/Linux/Updates/UserApplications.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <unistd.h>

namespace platform::desktop {

namespace {
QJsonObject informationIn(const QString &path) {
    constexpr qint64 largestFile = 1 << 20;
    QFile file(path);
    const bool isReadable = QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly);
    return isReadable ? QJsonDocument::fromJson(file.read(largestFile)).object() : QJsonObject();
}
} // namespace

QString LinuxProcess::besideTheProgram() {
    return applications::runningBundle() + QStringLiteral("/Info.json");
}

LinuxProcess::LinuxProcess(const QString &informationFile, const QString &home)
    : m_information(informationIn(informationFile)), m_home(home) {
    for (const QString &folder : {QStringLiteral("/Library/Logs"), QStringLiteral("/Library/Application Support")}) {
        folders::make(home + folder);
    }
}

std::optional<QString> LinuxProcess::infoDictionaryString(const QString &key) const {
    const QJsonValue value = m_information.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QString> LinuxProcess::environment(const QString &name) const {
    return m_environment.contains(name) ? std::optional(m_environment.value(name)) : std::nullopt;
}

qint32 LinuxProcess::identifier() const {
    return ::getpid();
}

} // namespace platform::desktop
