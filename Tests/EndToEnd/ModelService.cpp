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
    ModelService::Question question;
    question.body = QJsonDocument::fromJson(QByteArray::fromStdString(request.body)).object();
    const QJsonArray messages = question.body.take(QStringLiteral("messages")).toArray();
    for (const QJsonValue &message : messages) {
        question.messages.push_back(
            {message[QStringLiteral("role")].toString(), message[QStringLiteral("content")].toString()});
    }
    question.authorization = QString::fromStdString(request.get_header_value("Authorization"));
    return question;
}

QString between(const QString &text, const QString &open, const QString &close) {
    const auto start = text.indexOf(open);
    const auto end = text.lastIndexOf(close);
    return start < 0 || end < start ? QString() : text.mid(start + open.size(), end - start - open.size());
}

bool send(httplib::DataSink &sink, const std::string &text) {
    return sink.is_writable() && sink.write(text.data(), text.size());
}

} // namespace

QString ModelService::Question::draft() const {
    return between(messages.back().content, QStringLiteral("<draft>\n"), QStringLiteral("\n</draft>"));
}

std::string ModelService::Question::conversation() const {
    const QString &content = (isForReply() ? messages.back() : messages.front()).content;
    return between(content, QStringLiteral("<conversation>\n"), QStringLiteral("\n</conversation>")).toStdString();
}

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
    m_answer = {text, manner};
    m_answersOfModels.clear();
    m_mayEnd = false;
}

void ModelService::modelWillAnswer(const QString &model, const QString &text, Manner manner) {
    const std::lock_guard lock(m_mutex);
    m_answersOfModels[model] = {text, manner};
}

std::vector<ModelService::Question> ModelService::questions() const {
    const std::lock_guard lock(m_mutex);
    return m_questions;
}

void ModelService::answer(const httplib::Request &request, httplib::Response &response) {
    const std::lock_guard lock(m_mutex);
    m_questions.push_back(parsed(request));
    const auto special = m_answersOfModels.find(m_questions.back().model());
    const Answer &answer = special == m_answersOfModels.end() ? m_answer : special->second;
    if (answer.manner == Manner::refuses) {
        response.status = 429;
        const QJsonObject error{{QStringLiteral("message"), answer.text}};
        response.set_content(compact({{QStringLiteral("error"), error}}), "application/json");
        return;
    }
    response.set_chunked_content_provider("text/event-stream", [this, answer](std::size_t, httplib::DataSink &sink) {
        const bool whole = stream(sink, answer);
        m_clientsGone += whole || answer.manner == Manner::breaksOff ? 0 : 1;
        return whole;
    });
}

bool ModelService::stream(httplib::DataSink &sink, const Answer &answer) {
    const QString &text = answer.text;
    bool connected = send(sink, ": PROCESSING\n\n");
    for (qsizetype start = 0, length = 0; connected && start < text.size(); start += length) {
        length = 5;
        while (start + length < text.size() && text[start + length].isLowSurrogate()) {
            ++length;
        }
        connected = send(sink, event(text.mid(start, length)));
        sleepBriefly();
    }
    if (answer.manner == Manner::breaksOff) {
        send(sink, "data: {\"choi");
        return false;
    }
    while (connected && answer.manner == Manner::answers && !m_mayEnd) {
        connected = send(sink, ": PROCESSING\n\n");
        sleepBriefly();
    }
    connected = connected && send(sink, "data: [DONE]\n\n");
    sink.done();
    return connected;
}

} // namespace quillory::test
