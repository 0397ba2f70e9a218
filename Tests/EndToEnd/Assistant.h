// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RealDesktop/ChildProcess.h"

#include <QString>
#include <QStringList>

#include <map>

namespace quillory::test {

/// The built program, running with a made-up key and this model service.
class Assistant {
  public:
    using Settings = std::map<QString, QString>;

    /// The settings are written before it starts, as a user's command would write them.
    Assistant(const QByteArray &modelService, const Settings &settings);

    /// Changes a setting as a user's command would, also while the program runs.
    static void set(const QString &setting, const QString &value);

    [[nodiscard]] static QString log();
    /// How many lines of the log contain the text.
    [[nodiscard]] static int timesLogged(const QString &text);
    /// The record of choices, line by line.
    [[nodiscard]] static QStringList choices();
    [[nodiscard]] pid_t pid() const { return m_process.pid(); }
    [[nodiscard]] bool isRunning() { return m_process.isRunning(); }
    /// Asks it to end, unless it has, and returns its exit status.
    int end() { return m_process.end(); }

  private:
    ChildProcess m_process;
};

} // namespace quillory::test
