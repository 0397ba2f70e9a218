// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Process.h"

#include <QDir>
#include <QTemporaryDir>

#include <map>

namespace quillory::test {

using namespace Qt::StringLiterals;

/// Empty when the file cannot be read.
inline QByteArray contentOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A process with a throwaway home folder, in which the folders that the program expects are made. Set its variables
/// and information before other threads ask.
class SimulatedProcess final : public platform::Process {
  public:
    SimulatedProcess() {
        QDir(m_home.path()).mkpath(u"Library/Logs"_s);
        QDir(m_home.path()).mkpath(u"Library/Application Support"_s);
    }
    [[nodiscard]] std::optional<QString> infoDictionaryString(const QString &key) const override {
        return found(information, key);
    }
    [[nodiscard]] std::optional<QString> environment(const QString &name) const override {
        return found(variables, name);
    }
    [[nodiscard]] QString homeDirectory() const override { return m_home.path(); }
    [[nodiscard]] qint32 identifier() const override { return ownPid; }

    std::map<QString, QString> information;
    std::map<QString, QString> variables;
    qint32 ownPid = 4711;
    [[nodiscard]] QString logPath() const { return m_home.filePath(u"Library/Logs/Quillory.log"_s); }
    /// The lines of the log so far, without their times.
    [[nodiscard]] QStringList logMessages() const {
        QStringList lines = QString::fromUtf8(contentOf(logPath())).split(u'\n', Qt::SkipEmptyParts);
        for (QString &line : lines) {
            line.remove(0, QLatin1StringView("HH:mm:ss.SSS ").size());
        }
        return lines;
    }

  private:
    static std::optional<QString> found(const std::map<QString, QString> &values, const QString &key) {
        const auto value = values.find(key);
        return value == values.end() ? std::nullopt : std::optional(value->second);
    }

    QTemporaryDir m_home;
};

} // namespace quillory::test
