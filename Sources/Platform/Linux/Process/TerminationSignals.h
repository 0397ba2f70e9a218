// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Process/SignalPipe.h"

#include <QSocketNotifier>

#include <functional>

namespace platform::desktop {

/// Turns a request to end (SIGINT, SIGTERM, SIGHUP) into one call on the main thread, so that the program ends in good
/// order: the clipboard is handed over, settings are on disk. One at a time, made on the main thread.
class TerminationSignals {
  public:
    explicit TerminationSignals(std::function<void()> terminate);

  private:
    SignalPipe m_signals{{SIGINT, SIGTERM, SIGHUP}};
    QSocketNotifier m_notifier{m_signals.descriptor(), QSocketNotifier::Read};
};

} // namespace platform::desktop
