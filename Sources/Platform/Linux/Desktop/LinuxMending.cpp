// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Desktop/LinuxMending.h"

#include "Platform/Linux/Applications/ProcessInspection.h"
#include "Platform/Linux/Desktop/Autostart.h"
#include "Platform/Linux/Desktop/BusExamination.h"
#include "Platform/Linux/Desktop/DesktopSettings.h"
#include "Platform/Linux/Desktop/X11Examination.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

#include <csignal>
#include <thread>

namespace platform::desktop {

namespace {
using namespace std::chrono_literals;
constexpr auto patience = 10s;
constexpr auto pause = 50ms;

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
QString launcherOf(const processes::Fingerprint &process) {
    const QString executable = processes::withoutDeletedMark(process.executable);
    const QString launcher = QStandardPaths::findExecutable(processes::fileName(executable));
    return launcher.isEmpty() && QFileInfo(executable).isExecutable() ? executable : launcher;
}

/// Whether a program that was started is still there after a moment; one that refuses to run ends at once.
bool startsAndStays(QProcess &program) {
    constexpr auto moment = 1500ms;
    qint64 pid = 0;
    if (!program.startDetached(&pid)) {
        return false;
    }
    std::this_thread::sleep_for(moment);
    const auto process = processes::fingerprint(static_cast<qint32>(pid));
    return process && !process->executable.isEmpty();
}

void prepare(QProcess &program, const ApplicationFacts &application, QStringList arguments) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (application.bundleIdentifier.startsWith(QStringLiteral("org.mozilla."))) {
        environment.insert(QStringLiteral("GNOME_ACCESSIBILITY"), QStringLiteral("1"));
        environment.insert(QStringLiteral("MOZ_ENABLE_WAYLAND"), QStringLiteral("0"));
    } else {
        if (arguments.filter(QStringLiteral("--app")).isEmpty()) {
            arguments.prepend(QStringLiteral("--restore-last-session"));
        }
        arguments.prepend(QStringLiteral("--ozone-platform=x11"));
    }
    program.setArguments(arguments);
    program.setProcessEnvironment(environment);
    program.setStandardOutputFile(QProcess::nullDevice());
    program.setStandardErrorFile(QProcess::nullDevice());
}

bool endProcess(qint32 pid, const processes::Fingerprint &process) {
    ::kill(pid, SIGTERM);
    const auto giveUp = std::chrono::steady_clock::now() + patience;
    while (std::chrono::steady_clock::now() < giveUp) {
        const auto now = processes::fingerprint(pid);
        if (!now || now->startTime != process.startTime || now->executable.isEmpty()) {
            return true;
        }
        std::this_thread::sleep_for(pause);
    }
    return false;
}

} // namespace

bool LinuxMending::enableAccessibility() {
    desktopSettings::keepAccessibility(); // not every desktop has it
    return enableAccessibilityNow();
}

bool LinuxMending::setStartsAtLogin(bool starts) {
    return autostart::set(starts);
}

bool LinuxMending::start() {
    if (!QProcess::startDetached(QFile::symLinkTarget(QStringLiteral("/proc/self/exe")), {})) {
        return false;
    }
    const auto giveUp = std::chrono::steady_clock::now() + patience;
    while (!isProgramRunning() && std::chrono::steady_clock::now() < giveUp) {
        std::this_thread::sleep_for(pause);
    }
    return isProgramRunning();
}

bool LinuxMending::restart(const ApplicationFacts &application) {
    const auto process = processes::fingerprint(application.pid);
    const QString launcher = process ? launcherOf(*process) : QString();
    if (launcher.isEmpty()) {
        return false; // gone, or inside a sandbox, and nothing that could start it again
    }
    QProcess program;
    program.setProgram(launcher);
    prepare(program, application, argumentsOf(application.pid));
    return endProcess(application.pid, *process) && startsAndStays(program);
}

} // namespace platform::desktop
