// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace platform {

struct RunningApplication {
    qint32 pid = 0;
    /// Absent for a program that the desktop does not know as an application.
    std::optional<QString> bundleIdentifier;
    std::optional<QString> localizedName;
};

/// The applications that run on the desktop. Main thread only.
class Workspace {
  public:
    virtual ~Workspace() = default;
    /// The running application of a process, or absent when there is no such process.
    [[nodiscard]] virtual std::optional<RunningApplication> runningApplication(qint32 pid) = 0;
    /// Brings an application's windows to the front; does nothing when it is not running.
    virtual void activate(qint32 pid) = 0;
};

} // namespace platform
