// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealDesktop/RealDesktop.h"
#include "RealDesktop/StartedAnew.h"

#include <QApplication>

#include <gmock/gmock.h>

#include <optional>

/// ctest runs each test in a process of its own, so each has a desktop of its own.
int main(int argc, char **argv) {
    testing::InitGoogleMock(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    std::optional<quillory::test::RealDesktop> desktop;
    if (!quillory::test::isStartedAnew()) {
        desktop.emplace();
    }
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
