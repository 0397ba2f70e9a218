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

[[noreturn]] void becomeProgram(const std::vector<char *> &arguments, Output output, int keepOpen) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (output == Output::dropped) {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
    }
    if (keepOpen >= 0) {
        fcntl(keepOpen, F_SETFD, 0);
    }
    execvp(arguments.front(), arguments.data());
    _exit(127);
}

int exitStatus(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string> &arguments, Output output, int keepOpen) {
    const std::vector<char *> raw = pointers(arguments);
    m_pid = fork();
    if (m_pid < 0) {
        throw std::runtime_error("cannot start " + arguments.front());
    }
    if (m_pid == 0) {
        becomeProgram(raw, output, keepOpen);
    }
}

ChildProcess::~ChildProcess() {
    end();
}

ChildProcess::ChildProcess(ChildProcess &&other) noexcept
    : m_pid(std::exchange(other.m_pid, -1)), m_status(other.m_status) {}

ChildProcess &ChildProcess::operator=(ChildProcess &&other) noexcept {
    end();
    m_pid = std::exchange(other.m_pid, -1);
    m_status = other.m_status;
    return *this;
}

bool ChildProcess::isRunning() {
    int status = 0;
    if (m_pid > 0 && waitpid(m_pid, &status, WNOHANG) == m_pid) {
        m_status = exitStatus(status);
        m_pid = -1;
    }
    return m_pid > 0;
}

int ChildProcess::end() {
    if (!isRunning()) {
        return m_status;
    }
    kill(m_pid, SIGTERM);
    kill(m_pid, SIGCONT);
    if (!waitUntil([this] { return !isRunning(); }, 2000)) {
        kill(m_pid, SIGKILL);
        waitUntil([this] { return !isRunning(); }, 2000);
    }
    return m_status;
}

std::string startAndListen(ChildProcess &program, std::vector<std::string> arguments) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    arguments.back() += std::to_string(ends[1]);
    program = ChildProcess(arguments, Output::dropped, ends[1]);
    close(ends[1]);
    std::string line;
    for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';) {
        line += c;
    }
    close(ends[0]);
    return line;
}

int run(const std::vector<std::string> &arguments, Output output) {
    ChildProcess program(arguments, output);
    while (program.isRunning()) {
        sleepBriefly();
    }
    return program.end();
}

void sleepBriefly() {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

long long millisecondsNow() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

} // namespace quillory::test
