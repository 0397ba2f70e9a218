// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace httplib {
class DataSink;
class Server;
struct Request;
struct Response;
} // namespace httplib

namespace quillory::test {

/// A model service on the loopback address that streams the answer that it was given.
class ModelService {
  public:
    enum class Manner {
        /// Sends the answer, then keeps the connection open.
        answers,
        /// Sends the answer and ends it.
        answersAtOnce
    };
    struct Question {
        QString authorization;
        QString system;
        /// The last message.
        QString user;
        /// Requests for replies have no examples.
        bool isForReply = false;

        /// The text between the draft's tags.
        [[nodiscard]] QString draft() const;
        /// The text between the conversation's tags, in whichever of the two it is.
        [[nodiscard]] std::string conversation() const;
    };

    ModelService();
    ~ModelService();
    ModelService(const ModelService &) = delete;
    ModelService &operator=(const ModelService &) = delete;

    [[nodiscard]] QByteArray address() const;
    /// The answer to every request from now on.
    void willAnswer(const QString &text, Manner manner = Manner::answers);
    [[nodiscard]] std::vector<Question> questions() const;

  private:
    struct Answer {
        QString text;
        Manner manner = Manner::answers;
    };

    void answer(const httplib::Request &request, httplib::Response &response);
    bool stream(httplib::DataSink &sink, const Answer &answer);

    mutable std::mutex m_mutex;
    Answer m_answer;
    std::vector<Question> m_questions;
    std::atomic<bool> m_isEnding = false;
    int m_port = 0;
    std::unique_ptr<httplib::Server> m_server;
    std::jthread m_thread;
};

} // namespace quillory::test
