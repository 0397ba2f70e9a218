// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/HiddenInput.h"

#include "Platform/Linux/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace platform::desktop {

namespace {

/// What ends or stops a program that does nothing about it.
constexpr std::array endingAndStopping{SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGTSTP};
int signalPipe = -1;

/// A signal handler may do next to nothing; writing into a pipe is allowed.
void noteSignal(int number) {
    const int before = errno; // what it interrupts may be about to look at it
    const auto byte = static_cast<unsigned char>(number);
    [[maybe_unused]] const ssize_t ignored = write(signalPipe, &byte, 1);
    errno = before;
}

/// Holds such signals back while it lives, on whichever thread they arrive, and lets all of them through at its end,
/// which the program may not survive. One that the program ignores stays ignored.
class HeldSignals {
  public:
    HeldSignals() {
        std::array<int, 2> ends{-1, -1};
        if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
            return;
        }
        m_arrived = FileDescriptor(ends[0]);
        m_note = FileDescriptor(ends[1]);
        signalPipe = m_note.get();
        struct sigaction action {};
        action.sa_handler = noteSignal;
        action.sa_flags = SA_RESTART;
        for (std::size_t i = 0; i < endingAndStopping.size(); ++i) {
            sigaction(endingAndStopping[i], nullptr, &m_before[i]);
            if (m_before[i].sa_handler != SIG_IGN) {
                sigaction(endingAndStopping[i], &action, nullptr);
            }
        }
    }
    ~HeldSignals() {
        for (std::size_t i = 0; m_arrived && i < endingAndStopping.size(); ++i) {
            sigaction(endingAndStopping[i], &m_before[i], nullptr);
        }
        unsigned char number = 0;
        while (m_arrived && ::read(m_arrived.get(), &number, 1) == 1) {
            ::raise(number); // ends here, or stops here until it goes on
        }
    }
    HeldSignals(const HeldSignals &) = delete;
    HeldSignals &operator=(const HeldSignals &) = delete;

    /// Can be read from once one has come; nothing is to be read by others.
    [[nodiscard]] int descriptor() const { return m_arrived.get(); }

  private:
    FileDescriptor m_arrived;
    FileDescriptor m_note;
    std::array<struct sigaction, endingAndStopping.size()> m_before{};
};

/// Keeps the terminal from showing what is typed while it lives. The line break that ends it is shown.
class Hidden {
  public:
    Hidden() {
        if (tcgetattr(STDIN_FILENO, &m_before) == 0) {
            termios without = m_before;
            without.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            without.c_lflag |= ECHONL;
            m_isHidden = tcsetattr(STDIN_FILENO, TCSAFLUSH, &without) == 0;
        }
    }
    ~Hidden() {
        if (m_isHidden) {
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_before);
        }
    }
    Hidden(const Hidden &) = delete;
    Hidden &operator=(const Hidden &) = delete;

  private:
    termios m_before{};
    bool m_isHidden = false;
};

struct Typed {
    QByteArray text;
    /// Whether a signal came instead of the end of the text.
    bool isInterrupted = false;
};

Typed readUnlessSignalled() {
    constexpr int pasteTime = 100;
    constexpr int noLimit = -1;
    constexpr qsizetype longest = 64 * 1024;
    const HeldSignals signals;
    const Hidden hidden; // ends first, so that the terminal is as it was when the signals are let through
    Typed typed;
    std::array<char, 4096> piece; // of which a terminal fills one line at a time
    while (typed.text.size() < longest) {
        std::array<pollfd, 2> watched{{{STDIN_FILENO, POLLIN, 0}, {signals.descriptor(), POLLIN, 0}}};
        const int ready = poll(watched.data(), watched.size(), typed.text.isEmpty() ? noLimit : pasteTime);
        if (ready < 0 && errno == EINTR) {
            continue; // and sees why
        }
        typed.isInterrupted = watched[1].revents != 0;
        if (typed.isInterrupted || ready == 0) {
            break;
        }
        const ssize_t count = watched[0].revents != 0 ? ::read(STDIN_FILENO, piece.data(), piece.size()) : 0;
        if (ready > 0 && count <= 0) {
            break;
        }
        typed.text.append(piece.data(), std::max<ssize_t>(count, 0));
    }
    return typed;
}

} // namespace

QString readHidden() {
    Typed typed;
    do {
        typed = readUnlessSignalled();
    } while (typed.isInterrupted);
    return QString::fromUtf8(typed.text);
}

} // namespace platform::desktop
