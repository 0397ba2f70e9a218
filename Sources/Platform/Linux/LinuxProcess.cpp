// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/LinuxProcess.h"

#include "Platform/Linux/Storage/SettingsDocument.h"
#include "Platform/Linux/Updates/UserApplications.h"

#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>

#include <unistd.h>

namespace platform::desktop {

namespace {
constexpr qint64 largestInformationFile = 1 << 20;

std::map<QString, QString> informationIn(const QString &path) {
    std::map<QString, QString> information;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return information;
    }
    const auto values = settingsDocument::values(file.read(largestInformationFile));
    for (const auto &[key, value] : values.value_or(settingsDocument::Values())) {
        if (const QString *const text = std::get_if<QString>(&value)) {
            information.emplace(key, *text);
        }
    }
    return information;
}

std::map<QString, QString> environmentNow() {
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    std::map<QString, QString> variables;
    for (const QString &name : environment.keys()) {
        variables.emplace(name, environment.value(name));
    }
    return variables;
}

std::optional<QString> found(const std::map<QString, QString> &values, const QString &key) {
    const auto value = values.find(key);
    return value == values.end() ? std::nullopt : std::optional(value->second);
}
} // namespace

QString LinuxProcess::besideTheProgram() {
    return applications::runningBundle() + QStringLiteral("/Info.json");
}

LinuxProcess::LinuxProcess(const QString &informationFile, const QString &home)
    : m_information(informationIn(informationFile)), m_environment(environmentNow()), m_home(home) {
    for (const QString &folder : {QStringLiteral("/Library/Logs"), QStringLiteral("/Library/Application Support")}) {
        folders::make(home + folder);
    }
}

std::optional<QString> LinuxProcess::infoDictionaryString(const QString &key) const {
    return found(m_information, key);
}

std::optional<QString> LinuxProcess::environment(const QString &name) const {
    return found(m_environment, name);
}

qint32 LinuxProcess::identifier() const {
    return ::getpid();
}

} // namespace platform::desktop
