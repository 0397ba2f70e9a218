// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "SimulatedDesktop/SimulatedProcess.h"

#include <QDir>
#include <QFile>

namespace quillory::test {

namespace {
std::optional<QString> found(const std::map<QString, QString> &values, const QString &key) {
    const auto value = values.find(key);
    return value == values.end() ? std::nullopt : std::optional(value->second);
}
} // namespace

SimulatedProcess::SimulatedProcess() {
    QDir(m_home.path()).mkpath(QStringLiteral("Library/Logs"));
    QDir(m_home.path()).mkpath(QStringLiteral("Library/Application Support"));
}

std::optional<QString> SimulatedProcess::infoDictionaryString(const QString &key) const {
    return found(information, key);
}

std::optional<QString> SimulatedProcess::environment(const QString &name) const {
    return found(variables, name);
}

QString SimulatedProcess::logPath() const {
    return m_home.filePath(QStringLiteral("Library/Logs/Quillory.log"));
}

QStringList SimulatedProcess::logMessages() const {
    QFile file(logPath());
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    for (QString &line : lines) {
        line.remove(0, QLatin1StringView("HH:mm:ss.SSS ").size());
    }
    return lines;
}

} // namespace quillory::test
