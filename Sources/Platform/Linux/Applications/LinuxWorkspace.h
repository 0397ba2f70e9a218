// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Applications/ApplicationCatalogue.h"
#include "Platform/Linux/Applications/DesktopEntries.h"
#include "Platform/Linux/Applications/DesktopWindows.h"
#include "Platform/Linux/Applications/ProcessInspection.h"
#include "Platform/Workspace.h"

#include <chrono>

namespace platform::desktop {

/// The applications of a Linux desktop. A process is recognised by its Flatpak or Snap name, its executable, the name
/// it was started under or its desktop entry, and a helper process by the program that it serves. The result is kept
/// for as long as the process lives and stays the same program, so that asking ten times a second costs two small
/// reads.
class LinuxWorkspace final : public Workspace {
  public:
    /// windows: activate() works through it; outlives this. Null where there is no desktop.
    explicit LinuxWorkspace(DesktopWindows *windows, ApplicationCatalogue catalogue = ApplicationCatalogue(),
                            QStringList folders = entryFolders())
        : m_windows(windows), m_catalogue(std::move(catalogue)), m_entryFolders(std::move(folders)) {}

    [[nodiscard]] std::optional<RunningApplication> runningApplication(qint32 pid) override;
    void activate(qint32 pid) override;

  private:
    struct Known {
        processes::Fingerprint fingerprint;
        RunningApplication application;
        std::chrono::steady_clock::time_point found;
    };
    [[nodiscard]] RunningApplication recognise(qint32 pid, const processes::Fingerprint &process);

    DesktopWindows *m_windows;
    ApplicationCatalogue m_catalogue;
    QStringList m_entryFolders;
    QHash<qint32, Known> m_known;
};

} // namespace platform::desktop
