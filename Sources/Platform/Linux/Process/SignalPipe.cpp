// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Process/SignalPipe.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace platform::desktop {

namespace {
int writeEnd = -1;

/// A signal handler may do next to nothing; writing into a pipe is allowed.
void note(int number) {
    const int before = errno; // the interrupted code may be about to read it
    const auto byte = static_cast<unsigned char>(number);
    [[maybe_unused]] const ssize_t ignored = ::write(writeEnd, &byte, 1);
    errno = before;
}
} // namespace

SignalPipe::SignalPipe(const std::vector<int> &signals) {
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    m_arrived = FileDescriptor(ends[0]);
    m_note = FileDescriptor(ends[1]);
    writeEnd = m_note.get();
    struct sigaction action {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART;
    for (const int number : signals) {
        struct sigaction before {};
        ::sigaction(number, nullptr, &before);
        if (before.sa_handler != SIG_IGN) {
            ::sigaction(number, &action, nullptr);
            m_before.emplace(number, before);
        }
    }
}

void SignalPipe::restore() {
    for (const auto &[number, before] : m_before) {
        ::sigaction(number, &before, nullptr);
    }
    m_before.clear();
}

void SignalPipe::letThrough() {
    restore();
    unsigned char number = 0;
    while (m_arrived && ::read(m_arrived.get(), &number, 1) == 1) {
        ::raise(number); // ends here, or stops here until it goes on
    }
}

TerminationSignals::TerminationSignals(std::function<void()> terminate) {
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this, terminate = std::move(terminate)] {
        m_notifier.setEnabled(false);
        terminate();
    });
}

} // namespace platform::desktop
