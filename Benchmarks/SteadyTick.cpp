// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// For ten seconds, asks ten times a second what the tick asks about an unchanged field in Chromium. Prints the
// messages and round trips on the accessibility bus per tick, and this process's share of one core.
#include "BrowserPage.h"
#include "ClockTime.h"
#include "Platform/Linux/Accessibility/AtspiAccessibility.h"
#include "Platform/Linux/Qt/QtMainQueue.h"
#include "RealDesktop/RealDesktop.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace {

using namespace quillory;
using namespace std::chrono_literals;
using platform::AXAttribute;
using Clock = std::chrono::steady_clock;

constexpr int ticks = 100;

// What a tick asks about a chat's message box.
bool tick(platform::Accessibility &accessibility) {
    const auto focused = accessibility.createSystemWide().copyAttributeValue(AXAttribute::focusedUIElement);
    if (!focused) {
        return false;
    }
    const auto &field = std::get<platform::AXUIElement>(*focused);
    const auto has = [&](AXAttribute name) { return field.copyAttributeValue(name).has_value(); };
    return has(AXAttribute::role) && has(AXAttribute::numberOfCharacters) && has(AXAttribute::value) &&
           has(AXAttribute::position) && has(AXAttribute::size) && !has(AXAttribute::placeholderValue);
}

} // namespace

int main(int argc, char **argv) {
    const test::RealDesktop desktop;
    const QCoreApplication application(argc, argv);
    platform::desktop::QtMainQueue mainQueue;
    platform::desktop::AtspiAccessibility accessibility(mainQueue);
    bench::BrowserPage browser(bench::BrowserPage::Browser::chromium, {});
    const auto box = browser.waitForBox(accessibility);
    test::waitUntil([&] { return tick(accessibility); });

    const auto before = accessibility.traffic();
    const double cpuBefore = bench::milliseconds(CLOCK_PROCESS_CPUTIME_ID);
    const auto start = Clock::now();
    double worst = 0;
    int answered = 0;
    int done = 0;
    const auto timer = mainQueue.repeat(100ms, [&] {
        const auto begin = Clock::now();
        answered += tick(accessibility) ? 1 : 0;
        worst = std::max(worst, std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
        if (++done == ticks) {
            QCoreApplication::quit();
        }
    });
    QCoreApplication::exec();
    const double elapsed = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    const auto after = accessibility.traffic();
    std::printf("%d ticks, %d answered whole, slowest %.1f ms\n", done, answered, worst);
    std::printf("per tick: %.2f round trips, %.2f messages\n",
                static_cast<double>(after.roundTrips - before.roundTrips) / ticks,
                static_cast<double>(after.messages - before.messages) / ticks);
    std::printf("CPU: %.2f %% of one core\n",
                100 * (bench::milliseconds(CLOCK_PROCESS_CPUTIME_ID) - cpuBefore) / elapsed);
    return 0;
}
