// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Linux/XClient.h"
#include "Platform/Linux/Process/SingleInstance.h"

#include <gmock/gmock.h>

#include <csignal>
#include <future>
#include <sys/wait.h>
#include <unistd.h>

namespace quillory::test {
namespace {

using namespace std::chrono_literals;
using platform::desktop::SingleInstance;

TEST(SingleInstance, IsOnePerDisplayAndComesWhenSummoned) {
    EXPECT_FALSE(SingleInstance::isThere());
    EXPECT_FALSE(SingleInstance::summon(10s));
    auto first = SingleInstance::become();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(SingleInstance::isThere());
    EXPECT_EQ(SingleInstance::become(), nullptr);
    EXPECT_NE(SingleInstance::become(SingleInstance::Kind::setup), nullptr);
    EXPECT_FALSE(SingleInstance::summon(100ms)) << "it is still starting";
    auto waiting = std::async(std::launch::async, [] { return SingleInstance::summon(10s); });
    int summons = 0;
    first->onSummons([&] { ++summons; });
    EXPECT_TRUE(spinUntil([&] { return waiting.wait_for(0s) == std::future_status::ready && summons == 1; }));
    EXPECT_TRUE(waiting.get());

    const QByteArray display = qgetenv("DISPLAY");
    qputenv("DISPLAY", display + ".1");
    EXPECT_TRUE(SingleInstance::isThere()) << "another screen of the same display";
    for (const char *other : {":12345", ""}) {
        qputenv("DISPLAY", other);
        EXPECT_NE(SingleInstance::become(), nullptr);
    }
    qputenv("DISPLAY", display);
    first.reset();
    EXPECT_NE(SingleInstance::become(), nullptr);
}

TEST(SingleInstance, IsNobodyAfterACrashAndNotWaitedForWhenItHangs) {
    const pid_t other = ::fork();
    if (other == 0) {
        const auto instance = SingleInstance::become();
        ::raise(SIGSTOP);
        ::_exit(1);
    }
    ASSERT_TRUE(waitUntil([] { return SingleInstance::isThere(); }));
    EXPECT_FALSE(SingleInstance::summon(300ms));
    auto asked = std::async(std::launch::async, [] { return SingleInstance::summon(1h); });
    EXPECT_EQ(asked.wait_for(100ms), std::future_status::timeout);
    ::kill(other, SIGKILL);
    ::waitpid(other, nullptr, 0);
    EXPECT_FALSE(asked.get()) << "it ended while it was asked";
    EXPECT_NE(SingleInstance::become(), nullptr);
}

} // namespace
} // namespace quillory::test
