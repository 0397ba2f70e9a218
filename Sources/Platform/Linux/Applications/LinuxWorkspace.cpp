// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Applications/LinuxWorkspace.h"

namespace platform::desktop {

namespace {
/// A page process is a few steps below the program it serves: its sandbox and the sandbox's launcher are in between.
constexpr int longestHelperChain = 5;
constexpr qsizetype mostKnown = 256;
/// A program that has just started may not have its arguments yet, so unknown ones are looked at again.
constexpr std::chrono::seconds strangersAreKept{1};
} // namespace

std::optional<RunningApplication> LinuxWorkspace::runningApplication(qint32 pid) {
    const std::optional<processes::Fingerprint> process = processes::fingerprint(pid);
    if (!process) {
        m_known.remove(pid);
        return std::nullopt;
    }
    const auto now = std::chrono::steady_clock::now();
    const auto known = m_known.constFind(pid);
    if (known != m_known.constEnd() && known->fingerprint == *process &&
        (known->application.bundleIdentifier || now < known->found + strangersAreKept)) {
        return known->application;
    }
    if (m_known.size() >= mostKnown) {
        m_known.clear();
    }
    const RunningApplication application = recognise(pid, *process);
    m_known.insert(pid, {*process, application, now});
    return application;
}

RunningApplication LinuxWorkspace::recognise(qint32 pid, const processes::Fingerprint &process) {
    RunningApplication application{pid, std::nullopt, std::nullopt};
    std::optional<processes::Fingerprint> served = process;
    qint32 servedPid = pid;
    QStringList names;
    for (int step = 0; step < longestHelperChain && served && !application.bundleIdentifier; ++step) {
        names = processes::names(servedPid, *served);
        application.bundleIdentifier = m_catalogue.bundleIdentifier(names);
        if (!processes::isHelper(served->executable)) {
            break;
        }
        servedPid = served->parent;
        served = processes::fingerprint(servedPid);
    }
    application.localizedName = nameInFolders(names, m_entryFolders);
    if (!application.localizedName && !names.isEmpty()) {
        application.localizedName = processes::fileName(names.first());
    }
    return application;
}

void LinuxWorkspace::activate(qint32 pid) {
    if (m_windows != nullptr) {
        m_windows->activate(pid);
    }
}

} // namespace platform::desktop
