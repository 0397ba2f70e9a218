// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/FileDescriptor.h"

#include <csignal>
#include <map>
#include <vector>

namespace platform::desktop {

/// Keeps signals from doing what they do and makes a descriptor readable instead, whichever thread they arrive on.
/// Signals that the program ignores stay ignored. With its end they do again what they did before. One at a time.
class SignalPipe {
  public:
    explicit SignalPipe(const std::vector<int> &signals);
    ~SignalPipe() { restore(); }
    SignalPipe(const SignalPipe &) = delete;
    SignalPipe &operator=(const SignalPipe &) = delete;

    /// Can be read from once a signal has come, but is not to be read by others; -1 when there was no pipe to be had,
    /// and signals do what they did.
    [[nodiscard]] int descriptor() const { return m_arrived.get(); }
    /// Ends this early and sends the signals that came once more, which the program may not survive.
    void letThrough();

  private:
    void restore();

    FileDescriptor m_arrived;
    FileDescriptor m_note;
    std::map<int, struct sigaction> m_before;
};

} // namespace platform::desktop
