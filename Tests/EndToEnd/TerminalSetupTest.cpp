// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealDesktop/ChildProcess.h"

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <poll.h>
#include <pty.h>
#include <string>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace quillory::test {

namespace {

/// A terminal with a shell that runs one line.
class Terminal {
  public:
    explicit Terminal(const std::string &line) {
        m_shell = forkpty(&m_screen, nullptr, nullptr, nullptr);
        if (m_shell == 0) {
            execl("/bin/sh", "sh", "-m", "-c", line.c_str(), nullptr); // -m: keys stop programs
            _exit(127);
        }
    }
    ~Terminal() {
        close(m_screen); // hangs up
        kill(m_shell, SIGKILL);
        waitpid(m_shell, nullptr, 0);
    }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    void type(const std::string &keys) const { EXPECT_EQ(write(m_screen, keys.data(), keys.size()), keys.size()); }
    /// Whether the text appears in time, after the text that was waited for last.
    bool shows(const std::string &text) {
        return waitUntil(
            [&] {
                readOn();
                const auto at = m_shown.find(text, m_seen);
                m_seen = at != std::string::npos ? at + text.size() : m_seen;
                return at != std::string::npos;
            },
            60'000);
    }
    [[nodiscard]] bool hides() const {
        return waitUntil([this] { return !showsKeys(); });
    }
    [[nodiscard]] bool showsKeys() const {
        termios modes{};
        return tcgetattr(m_screen, &modes) == 0 && (modes.c_lflag & ECHO) != 0;
    }
    [[nodiscard]] const std::string &shown() const { return m_shown; }

  private:
    void readOn() {
        std::array<char, 4096> piece{};
        for (pollfd screen{m_screen, POLLIN, 0}; poll(&screen, 1, 0) > 0 && (screen.revents & POLLIN) != 0;) {
            const ssize_t count = read(m_screen, piece.data(), piece.size());
            m_shown.append(piece.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
    }

    int m_screen = -1;
    pid_t m_shell = -1;
    std::string m_shown;
    std::size_t m_seen = 0;
};

TEST(TerminalSetup, LeavesTheTerminalAsItWasHoweverThePromptEnds) {
    Terminal terminal("trap : INT; " QUILLORY_PROGRAM " setup --terminal; echo stopped; fg; echo ended $?; read line");
    ASSERT_TRUE(terminal.shows("Start Quillory at every login?"));
    terminal.type("\n");
    ASSERT_TRUE(terminal.shows("API key (") && terminal.hides());
    terminal.type("\x1a"); // Ctrl-Z
    ASSERT_TRUE(terminal.shows("stopped"));
    EXPECT_TRUE(terminal.shows("quillory")) << "back in the foreground";
    ASSERT_TRUE(terminal.hides());
    terminal.type("made up\n"); // no key: asks again
    ASSERT_TRUE(terminal.shows("copy the key again.") && terminal.shows("API key (") && terminal.hides());
    terminal.type("made-up\x03"); // Ctrl-C
    ASSERT_TRUE(terminal.shows("ended 130"));
    EXPECT_TRUE(terminal.showsKeys());
    EXPECT_THAT(terminal.shown(), testing::Not(testing::HasSubstr("made")));
}

} // namespace

} // namespace quillory::test
