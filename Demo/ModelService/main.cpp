// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Replier.h"
#include "ModelService/Rewriter.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QRegularExpression>
#include <QTextStream>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <optional>
#include <thread>

// A model service on the loopback address for trying the program without a key or an account. It speaks the protocol
// of chat completions, takes its time like a model, and rewrites drafts and answers customers by rules.

namespace {

using nlohmann::json;
using quillory::demo::replyTo;
using quillory::demo::Rewriter;
using quillory::demo::Tone;
using std::chrono::milliseconds;

struct Pace {
    milliseconds firstPiece{0};
    milliseconds betweenPieces{0};
};

struct Question {
    QString model;
    QString system;
    QString user;
    bool stream = false;
};

/// Throws nlohmann's exceptions for a body of another shape.
Question parseQuestion(const std::string &body) {
    const json request = json::parse(body);
    Question question;
    question.model = QString::fromStdString(request.at("model").get<std::string>());
    question.stream = request.value("stream", false);
    for (const json &message : request.at("messages")) {
        const QString content = QString::fromStdString(message.at("content").get<std::string>());
        (message.at("role") == "system" ? question.system : question.user) = content;
    }
    return question;
}

Tone toneOf(const QString &system) {
    if (system.contains(QStringLiteral("warm, friendly"))) {
        return Tone::friendly;
    }
    if (system.contains(QStringLiteral("as clear and concise"))) {
        return Tone::concise;
    }
    return system.contains(QStringLiteral("capitalization only")) ? Tone::grammarOnly : Tone::professional;
}

/// What stands between the first opening tag of that name and the last closing one; absent without them.
std::optional<QString> within(const QString &text, const QString &tag) {
    const QString opening = u'<' + tag + QStringLiteral(">\n");
    const auto start = text.indexOf(opening);
    const auto end = text.lastIndexOf(QStringLiteral("\n</") + tag + u'>');
    if (start < 0 || end < start + opening.size()) {
        return std::nullopt;
    }
    return text.sliced(start + opening.size(), end - start - opening.size());
}

QString answerTo(const Question &question, const Rewriter &rewriter) {
    if (const auto draft = within(question.user, QStringLiteral("draft"))) {
        return rewriter.rewrite(*draft, toneOf(question.system));
    }
    const QString reply = replyTo(within(question.user, QStringLiteral("conversation")).value_or(QString()),
                                  within(question.system, QStringLiteral("knowledge")).value_or(QString()));
    // Two models never say quite the same.
    const bool isOther = question.model.startsWith(QStringLiteral("google/")) && reply != QStringLiteral("SKIP");
    return isOther ? QStringLiteral("Thank you for asking! ") + reply : reply;
}

/// Models speak in tokens, which begin with the space before a word and break long words.
std::vector<std::string> pieces(const QString &answer) {
    static const QRegularExpression token(QStringLiteral("\\s?[^\\s]{1,6}|\\s"));
    std::vector<std::string> result;
    for (auto matches = token.globalMatch(answer); matches.hasNext();) {
        result.push_back(matches.next().captured().toStdString());
    }
    return result;
}

std::string event(const json &delta, const json &finishReason = nullptr) {
    const json choice{{"index", 0}, {"delta", delta}, {"finish_reason", finishReason}};
    return "data: " + json{{"object", "chat.completion.chunk"}, {"choices", {choice}}}.dump() + "\n\n";
}

void say(const std::string &line) {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    std::cout << line << std::endl;
}

bool writeAll(httplib::DataSink &sink, const std::string &text) {
    return sink.is_writable() && sink.write(text.data(), text.size());
}

/// False once the client has gone.
bool streamAnswer(httplib::DataSink &sink, const QString &answer, Pace pace) {
    bool connected = writeAll(sink, ": PROCESSING\n\n" + event({{"role", "assistant"}, {"content", ""}}));
    std::this_thread::sleep_for(pace.firstPiece);
    int number = 0;
    for (const std::string &piece : pieces(answer)) {
        connected = connected && writeAll(sink, event({{"content", piece}}));
        if (!connected) {
            say("the client left");
            return false;
        }
        say("sent piece " + std::to_string(++number));
        std::this_thread::sleep_for(pace.betweenPieces);
    }
    const json usage{{"choices", json::array()}, {"usage", {{"completion_tokens", number}}}};
    connected = writeAll(sink, event(json::object(), "stop") + "data: " + usage.dump() + "\n\ndata: [DONE]\n\n");
    say(connected ? "answered" : "the client left");
    sink.done();
    return connected;
}

void refuse(httplib::Response &response, int status, const std::string &message) {
    response.status = status;
    response.set_content(json{{"error", {{"code", status}, {"message", message}}}}.dump(), "application/json");
    say("refused with status " + std::to_string(status));
}

class Service {
  public:
    explicit Service(Pace pace) : m_pace(pace) {
        m_server.Post("/api/v1/chat/completions", [this](const httplib::Request &request, httplib::Response &response) {
            answer(request, response);
        });
    }

    /// Serves until the process is ended; false when the port cannot be had.
    bool serve(int port) {
        const char *host = "127.0.0.1";
        const int bound = port == 0 ? m_server.bind_to_any_port(host) : m_server.bind_to_port(host, port) ? port : -1;
        if (bound < 0) {
            return false;
        }
        say("listening on port " + std::to_string(bound));
        return m_server.listen_after_bind();
    }

  private:
    void answer(const httplib::Request &request, httplib::Response &response) {
        if (!request.get_header_value("Authorization").starts_with("Bearer ")) {
            return refuse(response, 401, "No key was given");
        }
        try {
            answerQuestion(parseQuestion(request.body), response);
        } catch (const json::exception &) {
            refuse(response, 400, "The request is not one for a chat completion");
        }
    }

    void answerQuestion(const Question &question, httplib::Response &response) {
        if (!question.model.startsWith(QStringLiteral("anthropic/")) &&
            !question.model.startsWith(QStringLiteral("google/"))) {
            std::this_thread::sleep_for(m_pace.firstPiece);
            return refuse(response, 400, "There is no model " + question.model.toStdString());
        }
        const QString text = rewritten(question);
        if (question.stream) {
            response.set_chunked_content_provider(
                "text/event-stream",
                [text, pace = m_pace](std::size_t, httplib::DataSink &sink) { return streamAnswer(sink, text, pace); });
            return;
        }
        const json message{{"role", "assistant"}, {"content", text.toStdString()}};
        response.set_content(json{{"choices", {{{"index", 0}, {"message", message}}}}}.dump(), "application/json");
        say("answered");
    }

    QString rewritten(const Question &question) {
        const std::lock_guard lock(m_rewriterMutex);
        return answerTo(question, m_rewriter);
    }

    Pace m_pace;
    httplib::Server m_server;
    std::mutex m_rewriterMutex;
    Rewriter m_rewriter;
};

int run(const QCommandLineParser &options) {
    const Pace pace{milliseconds(options.value(QStringLiteral("first-piece")).toInt()),
                    milliseconds(options.value(QStringLiteral("between-pieces")).toInt())};
    if (options.isSet(QStringLiteral("rewrite"))) {
        const QString answer = Rewriter().rewrite(options.value(QStringLiteral("rewrite")), Tone::professional);
        std::cout << answer.toStdString() << std::endl;
        return EXIT_SUCCESS;
    }
    if (!Service(pace).serve(options.value(QStringLiteral("port")).toInt())) {
        std::cerr << "quillory-demo-model: the port cannot be used" << std::endl;
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(
        QStringLiteral("A model service on the loopback address that rewrites and replies by rules."));
    options.addHelpOption();
    options.addOptions({
        {QStringLiteral("port"), QStringLiteral("The port to serve on; 0 takes a free one."), QStringLiteral("number"),
         QStringLiteral("0")},
        {QStringLiteral("first-piece"), QStringLiteral("Milliseconds before an answer begins."), QStringLiteral("ms"),
         QStringLiteral("600")},
        {QStringLiteral("between-pieces"), QStringLiteral("Milliseconds between its pieces."), QStringLiteral("ms"),
         QStringLiteral("40")},
        {QStringLiteral("rewrite"), QStringLiteral("Only print the professional rewrite of a draft."),
         QStringLiteral("draft")},
    });
    options.process(application);
    try {
        return run(options);
    } catch (const std::exception &error) {
        std::cerr << "quillory-demo-model: " << error.what() << std::endl;
        return EXIT_FAILURE;
    }
}
