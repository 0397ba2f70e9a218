// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/LinuxSystemTools.h"

#include "Platform/FileSystem.h"
#include "Platform/Linux/FileDescriptor.h"
#include "Platform/Linux/StandardError.h"
#include "Platform/Linux/Updates/ArchiveUnpacker.h"
#include "Platform/Linux/Updates/Manifest.h"
#include "Platform/Linux/Updates/UserApplications.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform::desktop {

namespace {
constexpr auto shell = "/bin/sh";
/// Gives the old program a second to end, then waits up to 30 seconds more: it may still be writing its files.
constexpr auto openCommand =
    "sleep 1; n=0; while kill -0 \"$1\" 2>/dev/null && [ $n -lt 300 ]; do sleep 0.1; n=$((n + 1)); done; exec \"$0\"";

/// The descriptor on which a new process reports the error that keeps it from becoming another program.
constexpr int reportFile = STDERR_FILENO + 1;

[[noreturn]] void cannotStart(const QByteArray &program, int error) {
    throw FileError((program + " could not be started: " + std::strerror(error) + '.').toStdString());
}

[[noreturn]] void endWith(int error) {
    (void)!::write(reportFile, &error, sizeof error);
    ::_exit(1);
}

/// Turns a forked child into a program that shares nothing with this one. Between fork() and execv() only
/// async-signal-safe calls are allowed: another thread may have held a lock. An error goes to the report's other end,
/// which otherwise ends without a byte.
[[noreturn]] void becomeDetached(const char *const *arguments, int report) {
    ::setsid();
    const int nowhere = ::open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::dup2(nowhere, standard);
    }
    if (report == reportFile) {
        ::fcntl(report, F_SETFD, FD_CLOEXEC);
    } else {
        ::dup3(report, reportFile, O_CLOEXEC);
    }
    ::close_range(reportFile + 1, ~0U, 0);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    // A second fork, so that init and not this program is the parent.
    const pid_t opener = ::fork();
    if (opener < 0) {
        endWith(errno);
    }
    if (opener == 0) {
        ::execv(arguments[0], const_cast<char *const *>(arguments));
        endWith(errno);
    }
    ::_exit(0);
}

/// The error that a process reported before it ended or became another program; 0 for none.
int reported(int report) {
    int error = 0;
    ssize_t count = 0;
    do {
        count = ::read(report, &error, sizeof error);
    } while (count < 0 && errno == EINTR);
    return count == static_cast<ssize_t>(sizeof error) ? error : 0;
}
} // namespace

bool LinuxSystemTools::unpackArchive(const QString &archive, const QString &folder, const std::stop_token &stop) {
    try {
        unpackZip(archive, folder, stop);
        return true;
    } catch (const UnpackError &error) {
        sayOnStandardError(QString::fromUtf8(error.what()));
        return false;
    }
}

void LinuxSystemTools::relaunchAfterExit(const QString &application) {
    const QByteArray program = QFile::encodeName(applications::resolved(application)) + '/' + bundleName::program;
    if (::access(program.constData(), X_OK) != 0) {
        cannotStart(program, errno);
    }
    const QByteArray self = QByteArray::number(::getpid());
    const std::array<const char *, 6> arguments{shell,  "-c", openCommand, program.constData(), self.constData(),
                                                nullptr};
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        cannotStart(shell, errno);
    }
    const FileDescriptor report(ends[0]);
    FileDescriptor ours(ends[1]);
    const pid_t child = ::fork();
    if (child == 0) {
        becomeDetached(arguments.data(), ours.get());
    }
    const int error = child < 0 ? errno : 0;
    ours = FileDescriptor(); // or the report would never end
    const int failure = error != 0 ? error : reported(report.get());
    while (child > 0 && ::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    if (failure != 0) {
        cannotStart(shell, failure);
    }
}

} // namespace platform::desktop
