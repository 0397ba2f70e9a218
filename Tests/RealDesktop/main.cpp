// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "RealDesktop/RealDesktop.h"

#include <QApplication>

#include <gmock/gmock.h>

namespace {
/// A test that wants another kind of desktop says so in its suite's name.
quillory::test::RealDesktop::Options optionsFor(const std::string &filter) {
    quillory::test::RealDesktop::Options options;
    options.compositor = filter.find("Composited") != std::string::npos;
    return options;
}
} // namespace

/// ctest runs each test in a process of its own, so each has a desktop of its own.
int main(int argc, char **argv) {
    testing::InitGoogleMock(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    const quillory::test::RealDesktop desktop(optionsFor(testing::GTEST_FLAG(filter)));
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
