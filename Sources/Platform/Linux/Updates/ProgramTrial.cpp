// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/ProgramTrial.h"

#include "Platform/Linux/Updates/FileTree.h"
#include "Platform/Linux/Updates/Manifest.h"
#include "Platform/URLSession.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <csignal>
#include <memory>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace platform::desktop {

namespace {
/// A child process that is killed and reaped with this object.
class TrialProcess {
  public:
    explicit TrialProcess(pid_t process)
        : m_process(process), m_ended(static_cast<int>(::syscall(SYS_pidfd_open, process, 0))) {}
    ~TrialProcess() {
        if (m_process > 0) {
            ::kill(-m_process, SIGKILL); // and what it started
            (void)takeStatus();
        }
    }
    TrialProcess(const TrialProcess &) = delete;
    TrialProcess &operator=(const TrialProcess &) = delete;

    /// Waits for the whole time if the process has no descriptor because none was free.
    [[nodiscard]] bool endsWithin(std::chrono::milliseconds time) const {
        pollfd ended{.fd = m_ended.get(), .events = POLLIN, .revents = 0};
        (void)::poll(&ended, 1, static_cast<int>(time.count()));
        siginfo_t end{};
        return ::waitid(P_PID, static_cast<id_t>(m_process), &end, WEXITED | WNOHANG | WNOWAIT) == 0 && end.si_pid != 0;
    }
    /// The status as of waitpid(), which it waits for.
    int takeStatus() {
        int status = -1;
        const pid_t process = std::exchange(m_process, -1);
        while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
        }
        return status;
    }

  private:
    pid_t m_process;
    FileDescriptor m_ended;
};

/// This program's environment, but with all functions resolved at once and not on their first call.
std::vector<char *> trialEnvironment() {
    static char bindsAtOnce[] = "LD_BIND_NOW=1";
    std::vector<char *> variables;
    for (char **variable = environ; *variable != nullptr; ++variable) {
        variables.push_back(*variable);
    }
    variables.push_back(bindsAtOnce);
    variables.push_back(nullptr);
    return variables;
}

/// Starts a program with no open files, input or output and no blocked signals, in a process group of its own. Returns
/// -1 when it cannot be started, with the reason in errno.
pid_t spawned(const QByteArray &program) {
    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawnattr_init(&attributes);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::posix_spawn_file_actions_addopen(&files, standard, "/dev/null", O_RDWR, 0);
    }
    ::posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    sigset_t none;
    sigemptyset(&none);
    ::posix_spawnattr_setsigmask(&attributes, &none);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);
    QByteArray name = program;
    char question[] = "--version";
    const std::array<char *, 3> arguments{name.data(), question, nullptr};
    pid_t process = -1;
    const int error =
        ::posix_spawn(&process, program.constData(), &files, &attributes, arguments.data(), trialEnvironment().data());
    ::posix_spawn_file_actions_destroy(&files);
    ::posix_spawnattr_destroy(&attributes);
    errno = error;
    return error == 0 ? process : -1;
}
} // namespace

ProgramTrial tryProgram(const QString &bundle, std::chrono::milliseconds patience, const std::stop_token &stop) {
    constexpr auto step = std::chrono::milliseconds(50); // between two looks at whether to stop
    const pid_t started = spawned(QFile::encodeName(bundle) + '/' + bundleName::program);
    if (started < 0 && (errno == EAGAIN || errno == ENOMEM)) {
        fileTree::fail(QStringLiteral("The new version could not be tried"));
    }
    if (started < 0) {
        return ProgramTrial::fails;
    }
    TrialProcess process(started);
    for (auto left = patience; left.count() > 0; left -= step) {
        if (stop.stop_requested()) {
            throw CancellationError();
        }
        if (process.endsWithin(std::min(step, left))) {
            const int status = process.takeStatus();
            return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? ProgramTrial::works : ProgramTrial::fails;
        }
    }
    return ProgramTrial::hangs;
}

} // namespace platform::desktop
