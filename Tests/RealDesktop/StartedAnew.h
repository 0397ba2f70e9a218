// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RealDesktop/ChildProcess.h"

#include <QByteArray>

#include <gtest/gtest.h>

namespace quillory::test {

inline constexpr auto startedAnew = "QUILLORY_TEST_IS_STARTED_ANEW";

/// Runs the current test once more, in a process of its own on this desktop, for what an application reads only at its
/// start. Returns its exit status.
inline int startAnew() {
    const auto *const test = testing::UnitTest::GetInstance()->current_test_info();
    qputenv(startedAnew, "1");
    const int status =
        run({"/proc/self/exe", "--gtest_filter=" + std::string(test->test_suite_name()) + '.' + test->name()});
    qunsetenv(startedAnew);
    return status;
}
/// Whether startAnew() started this process.
[[nodiscard]] inline bool isStartedAnew() {
    return qEnvironmentVariableIsSet(startedAnew);
}

} // namespace quillory::test
