// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/FileDescriptor.h"

#include <QSocketNotifier>

#include <csignal>
#include <functional>
#include <map>
#include <vector>

namespace platform::desktop {

/// While it lives, these signals make a descriptor readable instead of ending or stopping the program, on whichever
/// thread they arrive. Signals that the program ignores stay ignored. One at a time.
class SignalPipe {
  public:
    explicit SignalPipe(const std::vector<int> &signals);
    ~SignalPipe() { restore(); }
    SignalPipe(const SignalPipe &) = delete;
    SignalPipe &operator=(const SignalPipe &) = delete;

    /// Readable once a signal has come; only to be polled. -1 when no pipe could be made; signals then act as before.
    [[nodiscard]] int descriptor() const { return m_arrived.get(); }
    /// Ends this early and raises the signals that have come, which the program may not survive.
    void letThrough();

  private:
    void restore();

    FileDescriptor m_arrived;
    FileDescriptor m_note;
    std::map<int, struct sigaction> m_before;
};

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
