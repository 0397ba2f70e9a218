// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RealDesktop/ChildProcess.h"

#include <QString>
#include <QTemporaryDir>

#include <vector>

namespace quillory::test {

/// A whole desktop of its own: X server, session bus, window manager, accessibility bus, and empty home, configuration,
/// data and run-time folders. While it lives, this process's environment points at it, so programs started by the test
/// run on it. Make it before any QApplication.
class RealDesktop {
  public:
    struct Options {
        const char *screen = "1280x900x24";
        bool compositor = false;
    };

    RealDesktop();
    explicit RealDesktop(const Options &options);
    ~RealDesktop();
    RealDesktop(const RealDesktop &) = delete;
    RealDesktop &operator=(const RealDesktop &) = delete;

    /// Switches the session's accessibility on or off, as the desktop's settings would.
    static void setAccessibilityEnabled(bool enabled);

  private:
    void setEnvironment();
    /// Starts a server that prints its address, and puts the address into an environment variable.
    void startServer(const char *variable, const char *prefix, const std::vector<std::string> &arguments);

    QTemporaryDir m_folder;
    std::vector<std::pair<QByteArray, QByteArray>> m_savedEnvironment;
    std::vector<ChildProcess> m_programs;
};

} // namespace quillory::test
