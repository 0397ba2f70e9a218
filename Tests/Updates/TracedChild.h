// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <functional>
#include <sys/types.h>

namespace quillory::test {

/// A system call that a traced process is about to make.
struct TracedCall {
    pid_t process = 0;
    unsigned long long number = 0;
    std::array<unsigned long long, 6> arguments{};
};

/// Whether it changes something on a disk.
[[nodiscard]] bool changesDisk(const TracedCall &call);

/// What becomes of it: 0 it is made, killed the process is killed before it, or it fails with that error number.
using Verdict = int;
inline constexpr Verdict goOn = 0;
inline constexpr Verdict killed = -1;

/// Runs work in a process of its own. The result is the exit status: what the work returned, or killedStatus.
inline constexpr int killedStatus = 200;
int runForked(const std::function<int()> &work);
/// The same, with the process stopped before every system call.
int runTraced(const std::function<int()> &work, const std::function<Verdict(const TracedCall &)> &before);

} // namespace quillory::test
