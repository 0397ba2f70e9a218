// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Folders.h"
#include "Platform/Process.h"

#include <QJsonObject>
#include <QProcessEnvironment>

namespace platform::desktop {

/// The running program on Linux. Its bundle's information is "Info.json" beside the executable, a JSON object with
/// string members such as "EmbeddedAPIKey"; a missing or broken file counts as an empty one. Environment and
/// information are those of the start, so that any thread may ask.
class LinuxProcess final : public Process {
  public:
    /// Makes the home folder and the standard folders in it, for their owner alone.
    explicit LinuxProcess(const QString &informationFile = besideTheProgram(), const QString &home = folders::data());

    [[nodiscard]] std::optional<QString> infoDictionaryString(const QString &key) const override;
    [[nodiscard]] std::optional<QString> environment(const QString &name) const override;
    [[nodiscard]] QString homeDirectory() const override { return m_home; }
    [[nodiscard]] qint32 identifier() const override;

  private:
    [[nodiscard]] static QString besideTheProgram();

    const QJsonObject m_information;
    const QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
    QString m_home;
};

} // namespace platform::desktop
