// SPDX-FileCopyrightText: 2026 The Quillory developers
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

/// A model service on the loopback address that answers what it was told to, in pieces, and misbehaves on request.
class ModelService {
  public:
    enum class Manner {
        /// Sends the answer, then keeps the connection alive without an end until mayEnd() is called.
        answers,
        /// Sends the answer and drops the connection in the middle of an event.
        breaksOff,
        /// Answers with status 429 and the text as the body's message.
        refuses
    };
    struct Question {
        QString model;
        /// The system message: the tone, and the conversation.
        QString system;
        /// The text between the draft's tags.
        QString draft;
        QString authorization;
    };

    ModelService();
    ~ModelService();
    ModelService(const ModelService &) = delete;
    ModelService &operator=(const ModelService &) = delete;

    [[nodiscard]] QByteArray address() const;
    /// What every request gets from now on; answers don't end before they may.
    void willAnswer(const QString &text, Manner manner = Manner::answers);
    void mayEnd() { m_mayEnd = true; }
    [[nodiscard]] std::vector<Question> questions() const;
    /// How many answers were cut short because the client closed its connection.
    [[nodiscard]] int clientsGone() const { return m_clientsGone; }

  private:
    void answer(const httplib::Request &request, httplib::Response &response);
    bool stream(httplib::DataSink &sink, const QString &text, Manner manner);

    mutable std::mutex m_mutex;
    QString m_text;
    Manner m_manner = Manner::answers;
    std::vector<Question> m_questions;
    std::atomic<int> m_clientsGone = 0;
    std::atomic<bool> m_mayEnd = false;
    int m_port = 0;
    std::unique_ptr<httplib::Server> m_server;
    std::jthread m_thread;
};

} // namespace quillory::test
