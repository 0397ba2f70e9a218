// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace quillory::test {

/// Whether what a program prints is seen, or dropped because it says nothing about the test.
enum class Output { shown, dropped };

/// A program started by a test. It is ended with this object, and by the kernel should the test itself die.
class ChildProcess {
  public:
    ChildProcess() = default;
    /// Starts a program found on the PATH, in this process's environment. keepOpen: a file descriptor that the program
    /// inherits under the same number, or -1. Throws std::runtime_error when it cannot be started.
    explicit ChildProcess(const std::vector<std::string> &arguments, Output output = Output::shown, int keepOpen = -1);
    ~ChildProcess();
    ChildProcess(ChildProcess &&other) noexcept;
    ChildProcess &operator=(ChildProcess &&other) noexcept;
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    [[nodiscard]] pid_t pid() const { return m_pid; }
    [[nodiscard]] bool isRunning();
    /// Asks the program to end, insists after two seconds, and returns its exit status (128 + the signal's number).
    int end();

  private:
    pid_t m_pid = -1;
    int m_status = 0;
};

/// Starts a program that writes a line to the file descriptor whose number it finds at the end of its last argument,
/// and returns that line; empty when none comes.
std::string startAndListen(ChildProcess &program, std::vector<std::string> arguments);

/// Runs a program to its end and returns its exit status.
int run(const std::vector<std::string> &arguments, Output output = Output::shown);

void sleepBriefly();
[[nodiscard]] long long millisecondsNow();

/// Asks again and again until the answer is yes; false after the time limit.
template <typename Condition> bool waitUntil(Condition condition, int milliseconds = 10'000) {
    const long long end = millisecondsNow() + milliseconds;
    while (!condition()) {
        if (millisecondsNow() > end) {
            return false;
        }
        sleepBriefly();
    }
    return true;
}

} // namespace quillory::test
