// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealDesktop/RealDesktop.h"

#include <QApplication>

#include <gmock/gmock.h>

/// ctest runs each test in a process of its own, so each has a desktop of its own.
int main(int argc, char **argv) {
    testing::InitGoogleMock(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    const quillory::test::RealDesktop desktop;
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
