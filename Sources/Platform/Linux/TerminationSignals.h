// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace platform::desktop {

/// Turns a request to end (SIGINT, SIGTERM, SIGHUP) into a call on the main thread, so that the program ends in good
/// order: the clipboard is handed over, settings are on disk. One at a time, made on the main thread.
class TerminationSignals {
  public:
    explicit TerminationSignals(std::function<void()> terminate);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals &) = delete;
    TerminationSignals &operator=(const TerminationSignals &) = delete;

  private:
    std::function<void()> m_terminate;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace platform::desktop
