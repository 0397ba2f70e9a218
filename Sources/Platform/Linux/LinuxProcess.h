// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Folders.h"
#include "Platform/Process.h"

#include <map>

namespace platform::desktop {

/// The running program on Linux. Its bundle's information is "Info.json" beside the executable, an object with string
/// members such as "EmbeddedAPIKey"; a file that is missing or broken has none. The environment and the information
/// are those of the start, so that any thread may ask.
class LinuxProcess final : public Process {
  public:
    /// The home folder and the standard folders in it are made for their owner alone.
    explicit LinuxProcess(const QString &informationFile = besideTheProgram(), const QString &home = folders::data());

    [[nodiscard]] std::optional<QString> infoDictionaryString(const QString &key) const override;
    [[nodiscard]] std::optional<QString> environment(const QString &name) const override;
    [[nodiscard]] QString homeDirectory() const override { return m_home; }
    [[nodiscard]] qint32 identifier() const override;

  private:
    [[nodiscard]] static QString besideTheProgram();

    std::map<QString, QString> m_information;
    std::map<QString, QString> m_environment;
    QString m_home;
};

} // namespace platform::desktop
