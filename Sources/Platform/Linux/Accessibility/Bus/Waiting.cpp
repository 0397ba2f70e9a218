// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Bus/Waiting.h"

#include <algorithm>
#include <poll.h>
#include <sys/eventfd.h>

namespace platform::desktop::atspi {

StopSignal::StopSignal() : m_event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void StopSignal::request() {
    m_isRequested = true;
    eventfd_write(m_event.get(), 1);
}

void waitForActivity(const std::vector<sd_bus *> &buses, int descriptor, Deadline until) {
    std::vector<pollfd> activities{{descriptor, POLLIN, 0}};
    for (auto *bus : buses) {
        const int events = sd_bus_get_events(bus);
        activities.push_back({sd_bus_get_fd(bus), static_cast<short>(std::max(events, 0)), 0});
        std::uint64_t due = 0;
        if (sd_bus_get_timeout(bus, &due) >= 0 && due != static_cast<std::uint64_t>(-1)) {
            // The library counts on the same monotonic clock, in microseconds.
            until = std::min(until, Clock::time_point(std::chrono::microseconds(due)));
        }
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
    poll(activities.data(), activities.size(), static_cast<int>(std::clamp<long long>(left, 0, 60'000)));
}

} // namespace platform::desktop::atspi
