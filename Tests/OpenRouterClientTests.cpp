// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Model/OpenRouterAnswer.h"
#include "Quillory/Model/OpenRouterClient.h"
#include "Quillory/RewriteError.h"
#include "Quillory/Settings/AppSettings.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <QCryptographicHash>
#include <QJsonArray>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <future>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

using Message = OpenRouterClient::Message;
using testing::ElementsAre;
using testing::HasSubstr;

struct OpenRouterClientTest : testing::Test {
    OpenRouterClientTest() { store().set(settingsKey::openRouterAPIKey, u" \nsk-test-key-1\n "_s); }
    platform::UserDefaults &store() { return desktop.userDefaults; }

    std::string digestOf(SuggestionKind kind, const QString &text, const std::optional<QString> &context = {}) {
        QCryptographicHash hash(QCryptographicHash::Sha256);
        for (const Message &message : client.buildMessages(kind, text, context)) {
            hash.addData((message.role + u'\n' + message.content + u'\n').toUtf8());
        }
        return hash.result().toHex().first(16).toStdString();
    }
    /// Streams an answer; what the client handed on goes to chunks.
    QString streamed(std::stop_token stop = {}) {
        return client.stream(
            SuggestionKind::rewrite, u"dear \"friend\", helo"_s, std::nullopt, u"a/model"_s,
            [this](const QString &chunk) { chunks += chunk; }, std::move(stop));
    }
    void willAnswer(std::optional<int> status, const QByteArrayList &lines) {
        desktop.urlSession.onRequest([=](SimulatedExchange &exchange) {
            exchange.respond(status);
            for (const QByteArray &line : lines) {
                exchange.line(line);
            }
            exchange.end();
        });
    }
    QString streamedFrom(std::optional<int> status, const QByteArrayList &lines) {
        willAnswer(status, lines);
        return streamed();
    }
    template <typename Call> static QString failureOf(const Call &call) {
        try {
            call();
        } catch (const RewriteError &error) {
            return error.description();
        }
        return u"no failure"_s;
    }

    SimulatedDesktop desktop;
    AppSettings settings{desktop.userDefaults, desktop.process};
    OpenRouterClient client{settings, desktop.process, desktop.urlSession};
    QStringList chunks;
};

TEST_F(OpenRouterClientTest, BuildsTheFixedPromptsToTheLetter) {
    const QString draft = u" </draft> a\n"_s;
    const QString transcript = u"«you» hi"_s;
    const char *const professional = "0cb23a9a92eab241";
    const char *const withoutFacts = "bfd1cbf2585f1a2d";
    for (const auto &[tone, digest] : {std::pair("Friendly", "5ed11676ccf07da3"),
                                       {"Concise", "e1d49acb47e18915"},
                                       {"Grammar only", "fab7ce0f9760f258"},
                                       {"grammar only", professional},
                                       {"", professional},
                                       {"Professional", professional}}) {
        store().set(settingsKey::tone, QString::fromUtf8(tone));
        EXPECT_EQ(digestOf(SuggestionKind::rewrite, draft), digest) << tone;
    }
    EXPECT_EQ(digestOf(SuggestionKind::rewrite, draft, QString()), professional);
    store().set(settingsKey::businessProfile, u" \n\n "_s);
    EXPECT_EQ(digestOf(SuggestionKind::reply, transcript, u"ignored"_s), withoutFacts);
    store().set(settingsKey::businessProfile, u"\n\nWe sell lamps.\n"_s);
    EXPECT_EQ(digestOf(SuggestionKind::rewrite, draft, u" "_s), "4af1a7800daea3c9") << "with conversation and profile";
    // A character of the knowledge is what a reader sees as one, here two code points; 8,000 are kept.
    store().set(settingsKey::faqKnowledge, QString(u"e\u0301"_s).repeated(8001));
    EXPECT_EQ(digestOf(SuggestionKind::reply, transcript), "fe595c793b12e998") << "with profile and knowledge";
}

TEST_F(OpenRouterClientTest, SendsTheRequestOfTheService) {
    streamedFrom(200, {});
    const auto exchange = desktop.urlSession.exchange(0);
    EXPECT_EQ(exchange->request().url.toString(), u"https://openrouter.ai/api/v1/chat/completions"_s);
    EXPECT_EQ(exchange->request().method, "POST");
    EXPECT_EQ(exchange->request().timeout, std::chrono::seconds(20));
    EXPECT_THAT(exchange->request().headers,
                ElementsAre(std::pair("Authorization", "Bearer sk-test-key-1"),
                            std::pair("Content-Type", "application/json"), std::pair("X-Title", "Quillory")));
    QJsonObject body = exchange->json();
    const QJsonArray messages = body.take(u"messages"_s).toArray();
    EXPECT_EQ(body, (QJsonObject{{u"model"_s, u"a/model"_s},
                                 {u"temperature"_s, 0.3},
                                 {u"max_tokens"_s, 2048},
                                 {u"stream"_s, true},
                                 {u"provider"_s, QJsonObject{{u"sort"_s, u"latency"_s}}}}));
    EXPECT_EQ(messages.size(), 6);
    EXPECT_EQ(messages[5].toObject().keys().join(u' '), u"content role"_s);

    // Half a character in the draft is replaced rather than refused.
    willAnswer(200, {R"({"choices":[{"message":{"content":" Hello\n"}}]})"});
    EXPECT_EQ(client.rewrite(QString(QChar(0xD83D))), u"Hello"_s);
    const QJsonObject second = desktop.urlSession.exchange(1)->json();
    EXPECT_EQ(second[u"stream"_s], false);
    EXPECT_EQ(second[u"model"_s], defaultModel);
    EXPECT_TRUE(second[u"messages"_s][5][u"content"_s].toString().startsWith(u"<draft>\n?\n"_s));
}

TEST_F(OpenRouterClientTest, RefusesWhatCannotBeSentSafely) {
    const auto ask = [this] { streamed(); };
    desktop.process.variables[u"QUILLORY_MODEL_SERVICE"_s] = QString();
    store().set(settingsKey::openRouterAPIKey, u" \r\n\u00a0"_s);
    EXPECT_EQ(failureOf(ask), RewriteError::missingKey().description());
    store().set(settingsKey::openRouterAPIKey, u"sk-1\r\nX-Other: 1"_s);
    EXPECT_THAT(failureOf(ask).toStdString(), HasSubstr("control character"));
    store().set(settingsKey::openRouterAPIKey, u"sk-1"_s);
    for (const char *address :
         {"http://example.com", "http://localhost.example.com", "http://127.0.0.1.example.com",
          "http://127.0.0.1@example.com", "http://key@localhost", "ftp://localhost", "localhost:8080", "https://",
          "http://128.0.0.1", "http://127.0.0.999", "http://[::2]", "http://127.0.0.1\n.example.com", "nonsense"}) {
        desktop.process.variables[u"QUILLORY_MODEL_SERVICE"_s] = QString::fromUtf8(address);
        EXPECT_THAT(failureOf(ask).toStdString(), HasSubstr("QUILLORY_MODEL_SERVICE")) << address;
    }
    EXPECT_EQ(desktop.urlSession.requestCount(), 0);
}

TEST_F(OpenRouterClientTest, ReplacesSchemeHostAndPortOfTheService) {
    const std::pair<const char *, const char *> cases[]{
        {"http://127.0.0.1:8080", "http://127.0.0.1:8080"},
        {"http://[::1]:99/v2?q#f", "http://[::1]:99"},
        {"HTTP://LocalHost:1", "http://localhost:1"},
        {"https://models.example.com:444", "https://models.example.com:444"},
        {"", "https://openrouter.ai"},
    };
    for (int number = 0; const auto &[address, start] : cases) {
        desktop.process.variables[u"QUILLORY_MODEL_SERVICE"_s] = QString::fromUtf8(address);
        streamedFrom(200, {});
        EXPECT_EQ(desktop.urlSession.exchange(number++)->request().url.toString(),
                  QString::fromUtf8(start) + u"/api/v1/chat/completions"_s);
    }
}

QByteArray event(const QByteArray &delta) {
    return R"(data: {"choices":[{"delta":)" + delta + "}]}";
}

TEST_F(OpenRouterClientTest, HandsOnThePiecesOfAnAnswer) {
    const QByteArrayList lines{": OPENROUTER PROCESSING",
                               "",
                               "event: message",
                               event(R"({"role":"assistant"})"),
                               event(R"({"content":""})"),
                               event(R"({"content":" Hé"})"),
                               "DATA: [DONE]",
                               "data: {\"error\":{\"code\":502}}",
                               event(R"({"content":"llo"})").replace(": {", ":\t{"),
                               event(R"({"content":"\n"})"),
                               "data:[DONE]\t ",
                               event(R"({"content":"late"})")};
    EXPECT_EQ(streamedFrom(200, lines), u"Héllo"_s);
    EXPECT_EQ(chunks, QStringList({u" Hé"_s, u" Héllo"_s, u" Héllo\n"_s}));
    EXPECT_EQ(streamedFrom(200, {R"({"error":{"message":"overloaded"}})"}), QString());
    EXPECT_EQ(streamedFrom(200, {event(R"({"content":"no end mark"})")}), u"no end mark"_s);
}

TEST(StreamEvent, SkipsWhatIsNoEvent) {
    const QByteArray brackets(1'000'000, '[');
    const QByteArray shapes = R"(data:|data: {|data: 1e999|data: null|data: {"choices":{}}|data: {"choices":[]}|)"
                              R"(data: {"choices":[1]}|data: {"choices":[{"delta":{"content":"a"}},1]}|)"
                              R"(data: {"choices":[{"delta":["content"]}]}| data: [DONE]|data [DONE])";
    QByteArrayList lines = shapes.split('|');
    lines << event(R"({"content":["a"]})") << event("{\"content\":\"a\xC3(\"}") << event(R"({"content":"\ud800"})")
          << event("{\"content\":\"a\nb\"}") << "data: " + brackets << "data: " + brackets + QByteArray(1'000'000, ']');
    for (const QByteArray &line : lines) {
        EXPECT_EQ(streamEvent(line), StreamEvent()) << line.first(std::min<qsizetype>(line.size(), 80)).toStdString();
    }
    const QByteArray deep = QByteArray(100'000, '[') + QByteArray(100'000, ']');
    EXPECT_EQ(streamEvent(R"(data: {"deep":)" + deep + R"(,"choices":[{"delta":{"content":"a"}}]})").piece, u"a"_s);
    EXPECT_TRUE(streamEvent("data:\u00a0[DONE]\u2003").isDone);
}

TEST_F(OpenRouterClientTest, ReportsStatusesWithTheStartOfTheBody) {
    const QByteArray longLine = QByteArray(299, 'x') + "\u00e9yz" + QByteArray(700, 'y');
    const auto failure = [this](std::optional<int> status, const QByteArrayList &lines) {
        return failureOf([&] { streamedFrom(status, lines); });
    };
    EXPECT_EQ(failure(500, {longLine}), u"OpenRouter HTTP 500: "_s + QString(299, u'x') + u'é');
    EXPECT_EQ(failure(429, QByteArrayList(400, "ab")), u"OpenRouter HTTP 429: "_s + u"ab"_s.repeated(150));
    EXPECT_EQ(failure(401, {"{\"error\":", "\"bad key sk-test-key-1\"}"}),
              u"OpenRouter HTTP 401: {\"error\":\"bad key ***\"}"_s);
    // A service may quote the draft, as JSON or plain.
    EXPECT_EQ(failure(400, {R"({"message":"no: dear \"friend\", helo"} dear "friend", helo)"}),
              u"OpenRouter HTTP 400: {\"message\":\"no: ***\"} ***"_s);
    EXPECT_EQ(failure(204, {}), u"OpenRouter HTTP 204: "_s);
    EXPECT_EQ(failure(std::nullopt, {}), u"No HTTP response"_s);
    // One endless character: counting is given up.
    EXPECT_THAT(failure(500, QByteArrayList(40'000, "\u0301")).toStdString(), HasSubstr("HTTP 500"));
    const QByteArray tooMuch = R"({"content":")" + QByteArray(20'000, 'a') + "\"}";
    EXPECT_EQ(failure(200, QByteArrayList(5, event(tooMuch))), u"The answer from OpenRouter is too long"_s);
}

TEST_F(OpenRouterClientTest, ReportsWholeAnswersOfAnotherShape) {
    const auto answer = [this](int status, const QByteArray &body) {
        willAnswer(status, {body});
        return failureOf([&] { (void)client.rewrite(u"helo"_s); });
    };
    const QString unexpected = u"Unexpected response shape from OpenRouter"_s;
    for (const char *body : {"{}", "[]", R"({"choices":[]})", R"({"choices":[{"message":{"content":null}}]})"}) {
        EXPECT_EQ(answer(200, body), unexpected) << body;
    }
    EXPECT_EQ(answer(502, "Bad\nGateway"), u"OpenRouter HTTP 502: Bad\nGateway"_s);
    EXPECT_EQ(answer(502, "Bad\xFFGateway"), u"OpenRouter HTTP 502: "_s);
    EXPECT_THROW(answer(200, "<html>"), nlohmann::json::parse_error);
    EXPECT_THROW(answer(200, QByteArray(1'000'000, '[')), nlohmann::json::parse_error);
}

TEST_F(OpenRouterClientTest, EndsWithItsTaskOrItsConnection) {
    std::stop_source stop;
    auto answer = std::async(std::launch::async, [&] { return streamed(stop.get_token()); });
    const auto exchange = desktop.urlSession.exchange(0);
    exchange->piece(u"one"_s);
    ASSERT_TRUE(exchange->awaitRead());
    stop.request_stop();
    EXPECT_THROW(answer.get(), platform::CancellationError);
    exchange->piece(u"two"_s);
    EXPECT_TRUE(exchange->wasCancelled());
    EXPECT_EQ(chunks, QStringList(u"one"_s));

    desktop.urlSession.onRequest([](SimulatedExchange &breaking) {
        breaking.piece(u"half"_s);
        breaking.fail(u"The connection to the server was lost."_s);
    });
    EXPECT_THROW(streamed(), platform::URLError);
    EXPECT_EQ(chunks.back(), u"half"_s);
}

} // namespace
} // namespace quillory::test
