// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/TerminationSignals.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace platform::desktop {

namespace {

constexpr std::array endingSignals{SIGINT, SIGTERM, SIGHUP};
std::array<int, 2> wakePipe{-1, -1};

/// A signal handler may do next to nothing; writing into a pipe is allowed.
void wake(int) {
    const char byte = 0;
    [[maybe_unused]] const ssize_t ignored = write(wakePipe[1], &byte, 1);
}

void handleWith(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int number : endingSignals) {
        sigaction(number, &action, nullptr);
    }
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> terminate) : m_terminate(std::move(terminate)) {
    if (pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(wakePipe[0], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] {
        m_notifier->setEnabled(false);
        m_terminate();
    });
    handleWith(wake);
}

TerminationSignals::~TerminationSignals() {
    handleWith(SIG_DFL);
    m_notifier.reset();
    for (int &end : wakePipe) {
        close(end);
        end = -1;
    }
}

} // namespace platform::desktop
