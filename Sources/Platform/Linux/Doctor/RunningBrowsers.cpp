// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/RunningBrowsers.h"

#include "Platform/Linux/Applications/LinuxWorkspace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <map>
#include <optional>
#include <unistd.h>

namespace platform::desktop {

namespace {

std::vector<qint32> ownProcesses() {
    std::vector<qint32> processes;
    for (const QFileInfo &entry : QDir(QStringLiteral("/proc")).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool isNumber = false;
        const qint32 pid = entry.fileName().toInt(&isNumber);
        if (isNumber && entry.ownerId() == ::getuid()) {
            processes.push_back(pid);
        }
    }
    return processes;
}

/// A display's name without the screen number, which is optional.
QByteArray displayName(const QByteArray &display) {
    static const QRegularExpression screen(QStringLiteral("(:\\d+)\\.\\d+$"));
    return QString::fromLocal8Bit(display).replace(screen, QStringLiteral("\\1")).toLocal8Bit();
}

/// Whether a process was started for our display, since a user may have several sessions. Absent when its environment
/// does not say: Chromium writes its command line over it.
std::optional<bool> isOnOurDisplay(qint32 pid) {
    QFile file(QStringLiteral("/proc/%1/environ").arg(pid));
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    constexpr QByteArrayView name("DISPLAY=");
    for (const QByteArray &variable : file.readAll().split('\0')) {
        if (variable.startsWith(name)) {
            return displayName(variable.mid(name.size())) == displayName(qgetenv("DISPLAY"));
        }
    }
    return std::nullopt;
}

} // namespace

std::vector<ApplicationFacts> runningApplications(const std::set<qint32> &withWindows, SessionType session) {
    LinuxWorkspace workspace(nullptr);
    std::map<qint32, ApplicationFacts> found;
    for (const qint32 pid : ownProcesses()) {
        const auto application = workspace.runningApplication(pid);
        if (application && application->bundleIdentifier) {
            ApplicationFacts facts;
            facts.pid = pid;
            facts.bundleIdentifier = *application->bundleIdentifier;
            facts.name = application->localizedName.value_or(facts.bundleIdentifier);
            found.emplace(pid, std::move(facts));
        }
    }
    std::vector<ApplicationFacts> programs;
    for (auto &[pid, facts] : found) {
        const auto process = processes::fingerprint(pid);
        const auto parent = process ? found.find(process->parent) : found.end();
        const bool isHelper = parent != found.end() && parent->second.bundleIdentifier == facts.bundleIdentifier;
        facts.hasX11Window = withWindows.contains(pid);
        if (!isHelper && (facts.hasX11Window || isOnOurDisplay(pid).value_or(session == SessionType::wayland))) {
            programs.push_back(facts);
        }
    }
    return programs;
}

} // namespace platform::desktop
