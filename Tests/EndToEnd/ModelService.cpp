// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/ModelService.h"

#include "RealDesktop/ChildProcess.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <httplib.h>

namespace quillory::test {

namespace {

std::string compact(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

std::string event(const QString &content) {
    const QJsonObject delta{{QStringLiteral("content"), content}};
    return "data: " +
           compact({{QStringLiteral("choices"), QJsonArray{QJsonObject{{QStringLiteral("delta"), delta}}}}}) + "\n\n";
}

ModelService::Question parsed(const httplib::Request &request) {
    const QJsonObject body = QJsonDocument::fromJson(QByteArray::fromStdString(request.body)).object();
    const QJsonArray messages = body[QStringLiteral("messages")].toArray();
    const auto content = [](const QJsonValue &message) { return message[QStringLiteral("content")].toString(); };
    const QString user = content(messages.last());
    const QString open = QStringLiteral("<draft>\n");
    const auto start = user.indexOf(open) + open.size();
    return {body[QStringLiteral("model")].toString(), content(messages.first()),
            user.mid(start, user.lastIndexOf(QStringLiteral("\n</draft>")) - start),
            QString::fromStdString(request.get_header_value("Authorization"))};
}

bool send(httplib::DataSink &sink, const std::string &text) {
    return sink.is_writable() && sink.write(text.data(), text.size());
}

} // namespace

ModelService::ModelService() : m_server(std::make_unique<httplib::Server>()) {
    m_server->Post("/api/v1/chat/completions",
                   [this](const httplib::Request &request, httplib::Response &response) { answer(request, response); });
    m_port = m_server->bind_to_any_port("127.0.0.1");
    m_thread = std::jthread([this] { m_server->listen_after_bind(); });
}

ModelService::~ModelService() {
    m_mayEnd = true;
    m_server->stop();
}

QByteArray ModelService::address() const {
    return "http://127.0.0.1:" + QByteArray::number(m_port);
}

void ModelService::willAnswer(const QString &text, Manner manner) {
    const std::lock_guard lock(m_mutex);
    m_text = text;
    m_manner = manner;
    m_mayEnd = false;
}

std::vector<ModelService::Question> ModelService::questions() const {
    const std::lock_guard lock(m_mutex);
    return m_questions;
}

void ModelService::answer(const httplib::Request &request, httplib::Response &response) {
    const std::lock_guard lock(m_mutex);
    m_questions.push_back(parsed(request));
    if (m_manner == Manner::refuses) {
        response.status = 429;
        const QJsonObject error{{QStringLiteral("message"), m_text}};
        response.set_content(compact({{QStringLiteral("error"), error}}), "application/json");
        return;
    }
    response.set_chunked_content_provider(
        "text/event-stream", [this, text = m_text, manner = m_manner](std::size_t, httplib::DataSink &sink) {
            const bool whole = stream(sink, text, manner);
            m_clientsGone += whole || manner == Manner::breaksOff ? 0 : 1;
            return whole;
        });
}

bool ModelService::stream(httplib::DataSink &sink, const QString &text, Manner manner) {
    bool connected = send(sink, ": PROCESSING\n\n");
    for (qsizetype start = 0, length = 0; connected && start < text.size(); start += length) {
        length = 5;
        while (start + length < text.size() && text[start + length].isLowSurrogate()) {
            ++length;
        }
        connected = send(sink, event(text.mid(start, length)));
        sleepBriefly();
    }
    if (manner == Manner::breaksOff) {
        send(sink, "data: {\"choi");
        return false;
    }
    while (connected && !m_mayEnd) {
        connected = send(sink, ": PROCESSING\n\n");
        sleepBriefly();
    }
    connected = connected && send(sink, "data: [DONE]\n\n");
    sink.done();
    return connected;
}

} // namespace quillory::test
