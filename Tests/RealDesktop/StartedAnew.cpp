// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealDesktop/StartedAnew.h"

#include "RealDesktop/ChildProcess.h"

#include <QByteArray>

#include <gtest/gtest.h>

namespace quillory::test {

int startAnew() {
    const auto *const test = testing::UnitTest::GetInstance()->current_test_info();
    qputenv("QUILLORY_TEST_IS_STARTED_ANEW", "1");
    const int status =
        run({"/proc/self/exe", "--gtest_filter=" + std::string(test->test_suite_name()) + '.' + test->name()});
    qunsetenv("QUILLORY_TEST_IS_STARTED_ANEW");
    return status;
}

bool isStartedAnew() {
    return qEnvironmentVariableIsSet("QUILLORY_TEST_IS_STARTED_ANEW");
}

} // namespace quillory::test
