// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Updates/TracedChild.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillory::test {

namespace {

/// ptrace() takes its last two arguments as pointers, whatever they mean.
void *asPointer(std::uintptr_t value) {
    return reinterpret_cast<void *>(value); // NOLINT(performance-no-int-to-ptr)
}

class Tracer {
  public:
    Tracer(pid_t child, const std::function<Verdict(const TracedCall &)> &before) : m_child(child), m_before(before) {
        m_call.process = child;
    }

    int follow() {
        waitpid(m_child, &m_status, 0);
        ptrace(PTRACE_SETOPTIONS, m_child, nullptr, asPointer(PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL));
        while (step()) {
            if (!isAtCall()) {
                continue;
            }
            const Verdict verdict = m_before(m_call);
            if (verdict == killed) {
                kill(m_child, SIGKILL);
            } else if (verdict != goOn) {
                failCall(verdict);
            }
        }
        return WIFEXITED(m_status) ? WEXITSTATUS(m_status) : killedStatus;
    }

  private:
    /// On to the next stop; false when the process has ended.
    bool step() {
        const bool isSignal = WIFSTOPPED(m_status) && (WSTOPSIG(m_status) & 0x80) == 0 && WSTOPSIG(m_status) != SIGSTOP;
        ptrace(PTRACE_SYSCALL, m_child, nullptr, asPointer(isSignal ? static_cast<unsigned>(WSTOPSIG(m_status)) : 0));
        return waitpid(m_child, &m_status, 0) == m_child && WIFSTOPPED(m_status);
    }
    bool isAtCall() {
        __ptrace_syscall_info info{};
        if (WSTOPSIG(m_status) != (SIGTRAP | 0x80) ||
            ptrace(PTRACE_GET_SYSCALL_INFO, m_child, asPointer(sizeof info), &info) <= 0 ||
            info.op != PTRACE_SYSCALL_INFO_ENTRY) {
            return false;
        }
        m_call.number = info.entry.nr;
        std::ranges::copy(info.entry.args, m_call.arguments.begin());
        return true;
    }
    /// Lets the kernel do nothing, and the process see an error.
    void failCall(int error) {
        ptrace(PTRACE_POKEUSER, m_child, asPointer(offsetof(user, regs.orig_rax)), asPointer(~std::uintptr_t{0}));
        step();
        ptrace(PTRACE_POKEUSER, m_child, asPointer(offsetof(user, regs.rax)),
               asPointer(static_cast<std::uintptr_t>(-static_cast<std::intptr_t>(error))));
    }

    pid_t m_child;
    const std::function<Verdict(const TracedCall &)> &m_before;
    TracedCall m_call;
    int m_status = 0;
};

/// Whether what is written goes to a file. The sanitizers write to pipes of their own, and must not fail at that.
bool writesToFile(const TracedCall &call) {
    const std::string descriptor = "/proc/" + std::to_string(call.process) + "/fd/" + std::to_string(call.arguments[0]);
    std::error_code error;
    return std::filesystem::is_regular_file(descriptor, error);
}

pid_t forked(const std::function<int()> &work) {
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("cannot fork");
    }
    if (child == 0) {
        _exit(work());
    }
    return child;
}

} // namespace

bool changesDisk(const TracedCall &call) {
    static const std::set<unsigned long long> changing{SYS_mkdir,     SYS_mkdirat,   SYS_chmod,  SYS_fchmod,
                                                       SYS_fsync,     SYS_ftruncate, SYS_rename, SYS_renameat,
                                                       SYS_renameat2, SYS_unlinkat,  SYS_unlink, SYS_rmdir};
    if (call.number == SYS_write || call.number == SYS_pwrite64) {
        return writesToFile(call);
    }
    const bool isAt = call.number == SYS_openat;
    return changing.contains(call.number) ||
           ((isAt || call.number == SYS_open) && (call.arguments[isAt ? 2 : 1] & O_CREAT) != 0);
}

int runForked(const std::function<int()> &work) {
    int status = 0;
    waitpid(forked(work), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : killedStatus;
}

int runTraced(const std::function<int()> &work, const std::function<Verdict(const TracedCall &)> &before) {
    const pid_t child = forked([&] {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        return work();
    });
    return Tracer(child, before).follow();
}

} // namespace quillory::test
