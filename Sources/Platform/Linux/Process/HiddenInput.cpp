// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Process/HiddenInput.h"

#include "Platform/Linux/Process/SignalPipe.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace platform::desktop {

namespace {

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

/// Reads a paste to its end. False when a signal came instead.
bool readUnlessSignalled(QByteArray &typed, const SignalPipe &signals) {
    constexpr int pasteTime = 100;
    constexpr int noLimit = -1;
    constexpr qsizetype longest = 64 * 1024;
    const Hidden hidden;
    std::array<char, 4096> piece; // a terminal gives one line at a time
    while (typed.size() < longest) {
        std::array<pollfd, 2> watched{{{STDIN_FILENO, POLLIN, 0}, {signals.descriptor(), POLLIN, 0}}};
        const int ready = ::poll(watched.data(), watched.size(), typed.isEmpty() ? noLimit : pasteTime);
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        if (watched[1].revents != 0) {
            return false;
        }
        const ssize_t count = watched[0].revents != 0 ? ::read(STDIN_FILENO, piece.data(), piece.size()) : 0;
        if (count <= 0) {
            break;
        }
        typed.append(piece.data(), count);
    }
    return true;
}

} // namespace

QString readHidden() {
    for (;;) {
        SignalPipe signals({SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGTSTP}); // what ends or stops the program
        QByteArray typed;
        const bool isRead = readUnlessSignalled(typed, signals);
        signals.letThrough(); // the terminal has been given back
        if (isRead) {
            return QString::fromUtf8(typed);
        }
    }
}

} // namespace platform::desktop
