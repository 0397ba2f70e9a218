// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/ProgramRestart.h"

#include "Platform/Linux/Accessibility/Bus/Waiting.h"
#include "Platform/Linux/Applications/LinuxWorkspace.h"
#include "Platform/Linux/Applications/OtherPrograms.h"
#include "Platform/Linux/Doctor/RestartArguments.h"
#include "Platform/Linux/FileDescriptor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <poll.h>

extern "C" { // Debian 12's header does not say so itself
#include <sys/pidfd.h>
}

namespace platform::desktop {

namespace {

/// A process that stays the same one, whatever becomes of its number.
FileDescriptor hold(qint32 pid) {
    return FileDescriptor(pidfd_open(pid, 0));
}

/// Whether a number still means the program that was found under it.
bool isStill(const ApplicationFacts &application) {
    const auto process = processes::fingerprint(application.pid);
    const auto running = LinuxWorkspace(nullptr).runningApplication(application.pid);
    return process && process->startTime == application.startTime && running &&
           running->bundleIdentifier == application.bundleIdentifier;
}

/// Whether a process ends in that time; not waited for once the signal, if there is one, was given.
bool ends(const FileDescriptor &process, std::chrono::milliseconds time, const atspi::StopSignal *stop = nullptr) {
    std::array<pollfd, 2> watched{{{process.get(), POLLIN, 0}, {stop != nullptr ? stop->descriptor() : -1, POLLIN, 0}}};
    const auto until = std::chrono::steady_clock::now() + time;
    int count = -1;
    do {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now()).count();
        count = poll(watched.data(), watched.size(), static_cast<int>(std::max<long long>(left, 0)));
    } while (count < 0 && errno == EINTR);
    return count > 0 && watched[0].revents != 0;
}

QStringList commandLine(qint32 pid) {
    QFile file(QStringLiteral("/proc/%1/cmdline").arg(pid));
    QStringList arguments;
    if (file.open(QIODevice::ReadOnly)) {
        for (const QByteArray &argument : file.readAll().split('\0')) {
            arguments += QString::fromLocal8Bit(argument);
        }
        arguments.removeLast(); // the last one ends with a zero as well
    }
    return arguments;
}

/// What to start instead of a running executable: the launcher of that name, which may set things up, or itself. Empty
/// for one in a sandbox: what has its name outside is another program.
QString launcherOf(qint32 pid, const QString &executable) {
    if (QFileInfo::exists(QStringLiteral("/proc/%1/root/.flatpak-info").arg(pid))) {
        return {};
    }
    const QString launcher = QStandardPaths::findExecutable(processes::fileName(executable));
    return launcher.isEmpty() && QFileInfo(executable).isExecutable() ? executable : launcher;
}

/// Where a program runs, as its arguments may name files from there.
QDir folderOf(qint32 pid) {
    const QString folder = QFileInfo(QStringLiteral("/proc/%1/cwd").arg(pid)).symLinkTarget();
    return QFileInfo(folder).isDir() ? QDir(folder) : QDir::home();
}

/// What makes a program use the X display and show its tree, where no argument does.
QProcessEnvironment environmentFor(ProgramKind kind, QProcessEnvironment environment) {
    if (kind == ProgramKind::mozilla) {
        environment.insert(QStringLiteral("GNOME_ACCESSIBILITY"), QStringLiteral("1"));
        environment.insert(QStringLiteral("MOZ_ENABLE_WAYLAND"), QStringLiteral("0"));
    } else if (kind == ProgramKind::other) { // GTK, Qt, and Electron that is not known to be it
        environment.insert(QStringLiteral("GDK_BACKEND"), QStringLiteral("x11"));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        environment.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
        environment.insert(QStringLiteral("ELECTRON_OZONE_PLATFORM_HINT"), QStringLiteral("x11"));
    }
    return environment;
}

void prepare(QProcess &program, const ApplicationFacts &application, const QString &executable) {
    const ProgramKind kind = programKind(application.bundleIdentifier);
    const QDir folder = folderOf(application.pid);
    const auto isFolder = [&](const QString &path) { return QFileInfo(folder, path).isDir(); };
    keepApart(program);
    program.setProgram(launcherOf(application.pid, executable));
    program.setArguments(restartArguments(kind, commandLine(application.pid), executable, isFolder));
    program.setProcessEnvironment(environmentFor(kind, program.processEnvironment()));
    program.setWorkingDirectory(folder.path());
}

/// Whether a program that is started is still there after a moment; one that refuses to run ends at once.
bool startsAndStays(QProcess &program, const atspi::StopSignal &stop) {
    constexpr std::chrono::milliseconds moment(1500);
    qint64 pid = 0;
    if (!program.startDetached(&pid)) {
        return false;
    }
    const FileDescriptor process = hold(static_cast<qint32>(pid));
    return process && !ends(process, moment, &stop);
}

} // namespace

RestartOutcome restartProgram(const ApplicationFacts &application, const std::stop_token &stop,
                              std::chrono::milliseconds patience) {
    constexpr std::chrono::seconds furtherPatience(20);
    // Held first and compared then: what was compared is what the signal goes to.
    const FileDescriptor process = hold(application.pid);
    const auto found = process && isStill(application) ? processes::fingerprint(application.pid) : std::nullopt;
    QProcess program;
    if (found) {
        prepare(program, application, processes::withoutDeletedMark(found->executable));
    }
    if (program.program().isEmpty()) {
        return RestartOutcome::failed; // gone, or inside a sandbox, and nothing that could start it again
    }
    if (pidfd_send_signal(process.get(), SIGTERM, nullptr, 0) != 0) {
        return RestartOutcome::failed;
    }
    atspi::StopSignal stopped;
    const std::stop_callback whenAsked(stop, [&stopped] { stopped.request(); });
    // Once it is told to end it is waited for in any case: its user would be left without it.
    if (!ends(process, patience) && !ends(process, furtherPatience, &stopped)) {
        return RestartOutcome::isStillEnding;
    }
    return startsAndStays(program, stopped) ? RestartOutcome::restarted : RestartOutcome::failed;
}

} // namespace platform::desktop
