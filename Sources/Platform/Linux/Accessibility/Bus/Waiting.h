// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Message.h"
#include "Platform/Linux/FileDescriptor.h"

#include <atomic>

namespace platform::desktop::atspi {

/// Ends a thread's waits at once and for good: a flag, and a descriptor to wait on beside others.
class StopSignal {
  public:
    StopSignal();
    void request();
    [[nodiscard]] bool isRequested() const { return m_isRequested; }
    [[nodiscard]] int descriptor() const { return m_event.get(); }

  private:
    FileDescriptor m_event;
    std::atomic<bool> m_isRequested = false;
};

/// Waits until a connection has something to do, a descriptor can be read, or the time has come.
void waitForActivity(const std::vector<sd_bus *> &buses, int descriptor, Deadline until);

} // namespace platform::desktop::atspi
