// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Process.h"

#include <QStringList>
#include <QTemporaryDir>

#include <map>

namespace quillory::test {

/// A process with a throwaway home folder, in which the folders that the program expects are made. Set its variables
/// and information before other threads ask.
class SimulatedProcess final : public platform::Process {
  public:
    SimulatedProcess();
    [[nodiscard]] std::optional<QString> infoDictionaryString(const QString &key) const override;
    [[nodiscard]] std::optional<QString> environment(const QString &name) const override;
    [[nodiscard]] QString homeDirectory() const override { return m_home.path(); }
    [[nodiscard]] qint32 identifier() const override { return ownPid; }

    std::map<QString, QString> information;
    std::map<QString, QString> variables;
    qint32 ownPid = 4711;
    [[nodiscard]] QString logPath() const;
    /// The lines of the log so far, without their times.
    [[nodiscard]] QStringList logMessages() const;

  private:
    QTemporaryDir m_home;
};

} // namespace quillory::test
