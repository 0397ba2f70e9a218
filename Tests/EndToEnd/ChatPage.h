// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>

#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

class QJsonObject;

namespace httplib {
class Server;
}

namespace quillory::test {

/// A web chat of our own. The page itself reports what its document holds, so the browser is not asked.
class ChatPage {
  public:
    /// One text of the document between the chat list and the message box.
    struct Text {
        /// "name", "presence", "day", "divider", "forwarded", "quote", "message" or "time".
        QString kind;
        /// Whose bubble it is in: "us", "them", or empty.
        QString side;
        QString text;
    };
    struct State {
        QString address;
        /// The chat that is open, by its identifier.
        QString chat;
        /// The texts of the conversation, in the order of the document.
        std::vector<Text> texts;
        /// What the message box holds, read from the page's document.
        QString text;
        QStringList sent;
        /// The keys that reached the page.
        QStringList keys;
        /// How often the page or its box lost the focus.
        int blurs = 0;
        bool focused = false;
        /// The centre on the screen of the message box, and of each chat in the list.
        QPoint box;
        std::map<QString, QPoint> chats;
        /// How many messages from the customer it has received.
        int received = 0;
    };

    explicit ChatPage(bool https);
    ~ChatPage();
    ChatPage(const ChatPage &) = delete;
    ChatPage &operator=(const ChatPage &) = delete;

    [[nodiscard]] int port() const { return m_port; }
    [[nodiscard]] State state() const;
    [[nodiscard]] QString text() const { return state().text; }

    /// The customer writes. True once the message has been painted.
    bool receive(const QString &message);

  private:
    void serve();
    /// Returns what the page has not received yet.
    QStringList take(const QJsonObject &report);

    mutable std::mutex m_mutex;
    State m_state;
    QStringList m_incoming;
    double m_load = 0;
    int m_port = 0;
    std::unique_ptr<httplib::Server> m_server;
    std::jthread m_thread;
};

} // namespace quillory::test
