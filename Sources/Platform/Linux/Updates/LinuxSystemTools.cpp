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
#include <QRegularExpression>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform::desktop {

namespace {
/// Waits for the old program's end, should that take longer than its second, but not for ever.
constexpr auto openCommand =
    "sleep 1; n=0; while kill -0 \"$1\" 2>/dev/null && [ $n -lt 300 ]; do sleep 0.1; n=$((n + 1)); done; exec \"$0\"";

/// Where a new process reports what goes wrong.
constexpr int reportFile = STDERR_FILENO + 1;

[[noreturn]] void cannotStart(const QString &executable, const QString &why) {
    throw FileError(QStringLiteral("%1 could not be started: %2.").arg(executable, why).toStdString());
}

[[noreturn]] void endWith(int error) {
    (void)!::write(reportFile, &error, sizeof error);
    ::_exit(1);
}

/// What a new process may do before it becomes another program: only what needs no lock of this one. What goes wrong
/// is told to the other end of the report, which ends without a word otherwise.
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
    // In between so that init, not this program, is the parent.
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

int LinuxSystemTools::run(const QString &executable, const QStringList &arguments, const std::stop_token &stop) {
    if (executable != QStringLiteral("/usr/bin/ditto") || arguments.size() != 3 ||
        arguments.first() != QStringLiteral("-xk")) {
        cannotStart(executable, QStringLiteral("there is no such tool on this system"));
    }
    try {
        unpackZip(applications::resolved(arguments.at(1)), applications::resolved(arguments.at(2)), stop);
        return 0;
    } catch (const UnpackError &error) {
        sayOnStandardError(QString::fromUtf8(error.what()));
        return 1;
    }
}

void LinuxSystemTools::startDetached(const QString &executable, const QStringList &arguments) {
    static const QRegularExpression form(QStringLiteral("^sleep 1; open '([^']+)'$"));
    const auto match = form.match(arguments.value(1));
    if (executable != QStringLiteral("/bin/sh") || arguments.value(0) != QStringLiteral("-c") || !match.hasMatch()) {
        cannotStart(executable, QStringLiteral("this system has another way to open applications"));
    }
    const QByteArray program = QFile::encodeName(applications::resolved(match.captured(1))) + '/' + bundleName::program;
    if (::access(program.constData(), X_OK) != 0) {
        cannotStart(QFile::decodeName(program), QString::fromLocal8Bit(std::strerror(errno)));
    }
    const QByteArray self = QByteArray::number(::getpid());
    const std::array<const char *, 6> shell{"/bin/sh",        "-c",   openCommand, program.constData(),
                                            self.constData(), nullptr};
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        cannotStart(executable, QString::fromLocal8Bit(std::strerror(errno)));
    }
    const FileDescriptor report(ends[0]);
    FileDescriptor ours(ends[1]);
    const pid_t child = ::fork();
    if (child == 0) {
        becomeDetached(shell.data(), ours.get());
    }
    const int error = child < 0 ? errno : 0;
    ours = FileDescriptor(); // or the report would never end
    const int failure = error != 0 ? error : reported(report.get());
    while (child > 0 && ::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    if (failure != 0) {
        cannotStart(executable, QString::fromLocal8Bit(std::strerror(failure)));
    }
}

} // namespace platform::desktop
