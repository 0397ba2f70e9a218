// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <memory>

namespace quillory {
class TypingMonitor;
}

namespace quillory::ui {

/// Starts everything in its order and owns it for the life of the program. One per process, main thread only.
class AppDelegate {
  public:
    /// Makes the typing monitor, and with it the settings and the suggestion panel. Starts nothing.
    AppDelegate();
    ~AppDelegate();

    /// Called once, when the event loop runs.
    void applicationDidFinishLaunching();

  private:
    std::shared_ptr<TypingMonitor> m_monitor;
};

} // namespace quillory::ui
