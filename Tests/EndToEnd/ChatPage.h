// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>

#include <memory>
#include <mutex>
#include <thread>

namespace httplib {
class SSLServer;
}

namespace quillory::test {

/// A web chat of our own, served over HTTPS. The page tells what its own document holds, so nothing has to be asked of
/// the browser.
class ChatPage {
  public:
    struct State {
        QString address;
        /// What the message box holds, read from the page's document.
        QString text;
        QStringList sent;
        /// The keys that reached the page.
        QStringList keys;
        /// How often the page or its box lost the focus.
        int blurs = 0;
        bool focused = false;
        /// The middle of the message box on the screen.
        QPoint box;
    };

    ChatPage();
    ~ChatPage();
    ChatPage(const ChatPage &) = delete;
    ChatPage &operator=(const ChatPage &) = delete;

    [[nodiscard]] int port() const { return m_port; }
    [[nodiscard]] State state() const;
    [[nodiscard]] QString text() const { return state().text; }

  private:
    void take(const std::string &report);

    mutable std::mutex m_mutex;
    State m_state;
    double m_load = 0;
    int m_sequence = 0;
    int m_port = 0;
    std::unique_ptr<httplib::SSLServer> m_server;
    std::jthread m_thread;
};

} // namespace quillory::test
