// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealDesktop/ChildProcess.h"

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace quillory::test {
namespace {

std::vector<char *> pointers(const std::vector<std::string> &arguments) {
    std::vector<char *> result;
    result.reserve(arguments.size() + 1);
    for (const std::string &argument : arguments) {
        result.push_back(const_cast<char *>(argument.c_str()));
    }
    result.push_back(nullptr);
    return result;
}

[[noreturn]] void becomeProgram(const std::vector<char *> &arguments, Output output, int readEnd) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (output != Output::shown) {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(output == Output::read ? readEnd : nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
    }
    execvp(arguments.front(), arguments.data());
    _exit(127);
}

int exitStatus(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

// Not by QProcess: under the thread sanitizer its way to fork leaves the thread's locks unseen from then on.
ChildProcess::ChildProcess(const std::vector<std::string> &arguments, Output output) {
    const std::vector<char *> raw = pointers(arguments);
    std::array<int, 2> ends{-1, -1};
    if (output == Output::read && pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    m_pid = fork();
    if (m_pid < 0) {
        throw std::runtime_error("cannot start " + arguments.front());
    }
    if (m_pid == 0) {
        becomeProgram(raw, output, ends[1]);
    }
    m_output = ends[0];
    if (ends[1] >= 0) {
        close(ends[1]);
    }
}

ChildProcess::ChildProcess(ChildProcess &&other) noexcept {
    take(other);
}

ChildProcess &ChildProcess::operator=(ChildProcess &&other) noexcept {
    end();
    take(other);
    return *this;
}

void ChildProcess::take(ChildProcess &other) {
    m_pid = std::exchange(other.m_pid, -1);
    m_output = std::exchange(other.m_output, -1);
    m_status = other.m_status;
}

bool ChildProcess::isRunning() {
    int status = 0;
    if (m_pid > 0 && waitpid(m_pid, &status, WNOHANG) == m_pid) {
        m_status = exitStatus(status);
        m_pid = -1;
    }
    return m_pid > 0;
}

std::string ChildProcess::line() {
    std::string result;
    for (char c = 0; read(m_output, &c, 1) == 1 && c != '\n';) {
        result += c;
    }
    return result;
}

QByteArray ChildProcess::rest() {
    QByteArray result;
    std::array<char, 4096> part{};
    for (ssize_t count = 0; (count = read(m_output, part.data(), part.size())) > 0;) {
        result.append(part.data(), count);
    }
    return result;
}

int ChildProcess::end() {
    if (isRunning()) {
        kill(m_pid, SIGTERM);
        kill(m_pid, SIGCONT);
        if (!waitUntil([this] { return !isRunning(); }, 2000)) {
            kill(m_pid, SIGKILL);
            waitUntil([this] { return !isRunning(); }, 2000);
        }
    }
    if (m_output >= 0) {
        close(std::exchange(m_output, -1));
    }
    return m_status;
}

int run(const std::vector<std::string> &arguments, Output output) {
    ChildProcess program(arguments, output);
    while (program.isRunning()) {
        sleepBriefly();
    }
    return program.end();
}

QByteArray outputOf(const std::vector<std::string> &arguments) {
    return ChildProcess(arguments, Output::read).rest();
}

void sleepBriefly() {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

long long millisecondsNow() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

} // namespace quillory::test
