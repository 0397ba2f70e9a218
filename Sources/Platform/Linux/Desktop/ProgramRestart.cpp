// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Desktop/ProgramRestart.h"

#include "Platform/Linux/Accessibility/Waiting.h"
#include "Platform/Linux/Applications/LinuxWorkspace.h"
#include "Platform/Linux/Applications/OtherPrograms.h"
#include "Platform/Linux/FileDescriptor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
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

/// The arguments that a program was started with. Chromium and its kin write them anew as one piece, of which only
/// those are taken that say which windows to open.
QStringList argumentsOf(qint32 pid) {
    const QStringList whole = commandLine(pid);
    if (whole.size() != 1) {
        return whole.mid(1);
    }
    static const QRegularExpression wanted(
        QStringLiteral(" (--(?:user-data-dir|profile-directory|app|app-id)=.+?)(?= --|$)"));
    QStringList arguments;
    for (const auto &found : wanted.globalMatch(whole.first())) {
        arguments += found.captured(1);
    }
    return arguments;
}

/// What to start instead of a running executable: the launcher of that name, which may set things up, or itself.
QString launcherOf(qint32 pid) {
    const auto process = processes::fingerprint(pid);
    const QString executable = process ? processes::withoutDeletedMark(process->executable) : QString();
    const QString launcher = QStandardPaths::findExecutable(processes::fileName(executable));
    return launcher.isEmpty() && QFileInfo(executable).isExecutable() ? executable : launcher;
}

void prepare(QProcess &program, const ApplicationFacts &application, QStringList arguments) {
    keepApart(program);
    QProcessEnvironment environment = program.processEnvironment();
    if (application.bundleIdentifier.startsWith(QStringLiteral("org.mozilla."))) {
        environment.insert(QStringLiteral("GNOME_ACCESSIBILITY"), QStringLiteral("1"));
        environment.insert(QStringLiteral("MOZ_ENABLE_WAYLAND"), QStringLiteral("0"));
    } else {
        if (arguments.filter(QStringLiteral("--app")).isEmpty()) {
            arguments.prepend(QStringLiteral("--restore-last-session"));
        }
        arguments.prepend(QStringLiteral("--ozone-platform=x11"));
    }
    program.setProcessEnvironment(environment);
    program.setArguments(arguments);
    program.setWorkingDirectory(QDir::homePath());
}

/// Whether a program that is started is still there after a moment; one that refuses to run ends at once.
bool startsAndStays(QProcess &program, const std::stop_token &stop) {
    constexpr std::chrono::milliseconds moment(1500);
    qint64 pid = 0;
    if (!program.startDetached(&pid)) {
        return false;
    }
    atspi::StopSignal ended;
    const std::stop_callback whenAsked(stop, [&ended] { ended.request(); });
    const FileDescriptor process = hold(static_cast<qint32>(pid));
    return process && !ends(process, moment, &ended);
}

} // namespace

bool restartProgram(const ApplicationFacts &application, const std::stop_token &stop) {
    constexpr std::chrono::seconds patience(10);
    // Held first and compared then: what was compared is what the signal goes to.
    const FileDescriptor process = hold(application.pid);
    const QString launcher = process && isStill(application) ? launcherOf(application.pid) : QString();
    if (launcher.isEmpty()) {
        return false; // gone, or inside a sandbox, and nothing that could start it again
    }
    QProcess program;
    program.setProgram(launcher);
    prepare(program, application, argumentsOf(application.pid));
    // Once it is told to end it is waited for in any case: its user would be left without it.
    return pidfd_send_signal(process.get(), SIGTERM, nullptr, 0) == 0 && ends(process, patience) &&
           startsAndStays(program, stop);
}

} // namespace platform::desktop
