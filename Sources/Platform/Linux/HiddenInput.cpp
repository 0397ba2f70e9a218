// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/HiddenInput.h"

#include <array>
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

bool moreCame() {
    constexpr int pasteTime = 100;
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, pasteTime) > 0;
}

} // namespace

QString readHidden() {
    constexpr qsizetype longest = 64 * 1024;
    const Hidden hidden;
    QByteArray typed;
    std::array<char, 4096> piece; // of which a terminal fills one line at a time
    do {
        const ssize_t count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count <= 0) {
            break;
        }
        typed.append(piece.data(), count);
    } while (typed.size() < longest && moreCame());
    return QString::fromUtf8(typed);
}

} // namespace platform::desktop
