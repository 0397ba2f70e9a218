// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/ModelService.h"

#include "RealDesktop/ChildProcess.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <httplib.h>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

std::string event(const QString &content) {
    const QJsonObject choice{{u"delta"_s, QJsonObject{{u"content"_s, content}}}};
    const QJsonDocument document(QJsonObject{{u"choices"_s, QJsonArray{choice}}});
    return "data: " + document.toJson(QJsonDocument::Compact).toStdString() + "\n\n";
}

ModelService::Question parsed(const httplib::Request &request) {
    const QJsonObject body = QJsonDocument::fromJson(QByteArray::fromStdString(request.body)).object();
    const QJsonArray messages = body[u"messages"_s].toArray();
    return {.authorization = QString::fromStdString(request.get_header_value("Authorization")),
            .system = messages.first()[u"content"_s].toString(),
            .user = messages.last()[u"content"_s].toString(),
            .isForReply = messages.size() == 2};
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
    return between(user, u"<draft>\n"_s, u"\n</draft>"_s);
}

std::string ModelService::Question::conversation() const {
    return between(isForReply ? user : system, u"<conversation>\n"_s, u"\n</conversation>"_s).toStdString();
}

ModelService::ModelService() : m_server(std::make_unique<httplib::Server>()) {
    m_server->Post("/api/v1/chat/completions",
                   [this](const httplib::Request &request, httplib::Response &response) { answer(request, response); });
    m_port = m_server->bind_to_any_port("127.0.0.1");
    m_thread = std::jthread([this] { m_server->listen_after_bind(); });
}

ModelService::~ModelService() {
    m_isEnding = true;
    m_server->stop();
}

QByteArray ModelService::address() const {
    return "http://127.0.0.1:" + QByteArray::number(m_port);
}

void ModelService::willAnswer(const QString &text, Manner manner) {
    const std::lock_guard lock(m_mutex);
    m_answer = {text, manner};
}

std::vector<ModelService::Question> ModelService::questions() const {
    const std::lock_guard lock(m_mutex);
    return m_questions;
}

void ModelService::answer(const httplib::Request &request, httplib::Response &response) {
    const std::lock_guard lock(m_mutex);
    m_questions.push_back(parsed(request));
    response.set_chunked_content_provider(
        "text/event-stream",
        [this, answer = m_answer](std::size_t, httplib::DataSink &sink) { return stream(sink, answer); });
}

bool ModelService::stream(httplib::DataSink &sink, const Answer &answer) {
    bool connected = send(sink, ": PROCESSING\n\n");
    for (const QString &word : answer.text.split(QRegularExpression(u"(?<= )"_s))) {
        connected = connected && send(sink, event(word));
        sleepBriefly();
    }
    while (connected && answer.manner == Manner::answers && !m_isEnding) {
        connected = send(sink, ": PROCESSING\n\n");
        sleepBriefly();
    }
    connected = connected && send(sink, "data: [DONE]\n\n");
    sink.done();
    return connected;
}

} // namespace quillory::test
