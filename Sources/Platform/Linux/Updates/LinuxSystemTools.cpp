// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Updates/LinuxSystemTools.h"

#include "Platform/FileSystem.h"
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

[[noreturn]] void cannotStart(const QString &executable, const QString &why) {
    throw FileError(QStringLiteral("%1 could not be started: %2.").arg(executable, why).toStdString());
}

/// What a new process may do before it becomes another program: only what needs no lock of this one.
[[noreturn]] void becomeDetached(const char *const *arguments) {
    ::setsid();
    const int nowhere = ::open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::dup2(nowhere, standard);
    }
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    // In between so that init, not this program, is the parent.
    if (::fork() == 0) {
        ::execv(arguments[0], const_cast<char *const *>(arguments));
    }
    ::_exit(0);
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
    const pid_t child = ::fork();
    if (child == 0) {
        becomeDetached(shell.data());
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child) {
        cannotStart(executable, QString::fromLocal8Bit(std::strerror(errno)));
    }
}

} // namespace platform::desktop
