// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "RealDesktop/ChildProcess.h"

#include <QString>

namespace quillory::test {

/// The built program, running with a made-up key and the given model service.
class Assistant {
  public:
    explicit Assistant(const QByteArray &modelService);

    [[nodiscard]] static QString log();
    /// How many lines of the log contain the text.
    [[nodiscard]] static int timesLogged(const QString &text);
    [[nodiscard]] bool isRunning() { return m_process.isRunning(); }

  private:
    ChildProcess m_process;
};

} // namespace quillory::test
