// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <stop_token>

namespace platform {

/// The tools of the system that the program starts: "/usr/bin/ditto", which unpacks archives, and "/bin/sh" with the
/// command that opens the installed application. Any thread but the main one.
class SystemTools {
  public:
    virtual ~SystemTools() = default;
    /// Runs a tool to its end and gives its exit status. Throws FileError when it cannot be started, and
    /// CancellationError.
    [[nodiscard]] virtual int run(const QString &executable, const QStringList &arguments,
                                  const std::stop_token &stop) = 0;
    /// Starts a tool that goes on by itself when this program ends. Throws FileError when it cannot be started.
    virtual void startDetached(const QString &executable, const QStringList &arguments) = 0;
};

} // namespace platform
