// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <string>
#include <vector>

namespace quillory::test {

/// Whether what a program prints is seen, read by the test, or dropped because it says nothing about the test.
enum class Output { shown, read, dropped };

/// A program started by a test. It is ended with this object, and by the kernel should the test itself die.
class ChildProcess {
  public:
    ChildProcess() = default;
    /// Starts a program found on the PATH, in this process's environment. Throws std::runtime_error when it cannot be
    /// started.
    explicit ChildProcess(const std::vector<std::string> &arguments, Output output = Output::shown);
    ~ChildProcess() { end(); }
    ChildProcess(ChildProcess &&other) noexcept;
    ChildProcess &operator=(ChildProcess &&other) noexcept;
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    /// -1 once it has been seen to have ended.
    [[nodiscard]] pid_t pid() const { return m_pid; }
    [[nodiscard]] bool isRunning();
    /// The next line that it prints; empty when there is no further one.
    [[nodiscard]] std::string line();
    /// All that it prints until it ends.
    [[nodiscard]] QByteArray rest();
    /// Asks the program to end, insists after two seconds, and returns its exit status (128 + the signal's number).
    int end();

  private:
    void take(ChildProcess &other);

    pid_t m_pid = -1;
    /// Where its output is read from, or -1.
    int m_output = -1;
    int m_status = 0;
};

/// Runs a program to its end and returns its exit status.
int run(const std::vector<std::string> &arguments, Output output = Output::shown);
/// Runs a program to its end and returns what it prints on its standard output.
QByteArray outputOf(const std::vector<std::string> &arguments);

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
