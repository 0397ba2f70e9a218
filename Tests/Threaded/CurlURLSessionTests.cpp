// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Network/CurlURLSession.h"
#include "Platform/Linux/Network/LineSplitter.h"
#include "Threaded/LoopbackServer.h"

#include <gmock/gmock.h>

#include <dlfcn.h>
#include <future>
#include <netdb.h>

using namespace std::chrono_literals;
using platform::CancellationError;
using platform::URLError;
using platform::URLRequest;
using platform::desktop::CurlURLSession;
using platform::desktop::LineSplitter;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {
/// Looking this name up takes until the flag is set.
constexpr std::string_view slowName = "slow.invalid";
std::atomic<bool> slowNameAsked = false;
std::atomic<bool> slowNameAnswers = false;
} // namespace

/// Stands before the system's: libcurl's look-ups come here.
extern "C" int getaddrinfo(const char *name, const char *service, const addrinfo *hints, addrinfo **found) {
    if (name != nullptr && name == slowName) {
        slowNameAsked = true;
        slowNameAsked.notify_all();
        slowNameAnswers.wait(false);
        return EAI_NONAME;
    }
    using Function = int (*)(const char *, const char *, const addrinfo *, addrinfo **);
    static const auto systemFunction = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return systemFunction(name, service, hints, found);
}

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

using Lines = std::vector<QByteArray>;

URLRequest requestTo(const QUrl &url, std::chrono::milliseconds timeout = 10s) {
    return {.url = url, .method = "GET", .headers = {}, .body = {}, .timeout = timeout};
}

Lines readAll(platform::URLByteStream &stream) {
    Lines lines;
    while (const auto line = stream.nextLine()) {
        lines.push_back(*line);
    }
    return lines;
}

/// A server that says this to each request, and closes.
LoopbackServer::Handler saying(const QByteArray &bytes) {
    return [bytes](LoopbackConnection &connection) {
        (void)connection.readRequest();
        connection.send(bytes);
    };
}

/// The sentence with which reading an answer ends; empty when it ends well.
std::string failureOf(CurlURLSession &session, const URLRequest &request) {
    try {
        readAll(*session.bytes(request, {}));
        return {};
    } catch (const URLError &error) {
        return error.what();
    }
}

TEST(LineSplitter, GivesTheSameLinesHoweverTheBodyIsCut) {
    const QByteArray body = "\uFEFFa\r\n\r\n\nb\rc\n\r\uFEFFd\u00e9\U0001F600\r\n\xEF\xBB";
    const Lines expected{"a", "", "", "b", "c", "", "\uFEFFd\u00e9\U0001F600", "\xEF\xBB"};
    for (qsizetype step = 1; step <= body.size(); ++step) {
        LineSplitter splitter;
        Lines lines;
        const auto take = [&] {
            while (const auto line = splitter.next()) {
                lines.push_back(*line);
            }
        };
        for (qsizetype at = 0; at < body.size(); at += step) {
            splitter.feed(body.mid(at, step));
            take();
        }
        splitter.end();
        take();
        EXPECT_EQ(lines, expected) << "in steps of " << step;
    }
}

TEST(CurlURLSession, SendsRequestsAsGivenOverOneConnection) {
    // A proxy is for what leaves this computer.
    qputenv("http_proxy", "http://127.0.0.1:1");
    std::vector<QByteArray> requests;
    LoopbackServer server([&](LoopbackConnection &connection) {
        for (QByteArray request; !(request = connection.readRequest()).isEmpty();) {
            requests.push_back(request);
            connection.send(answerWith("401 Unauthorized", "{\"error\":\n\"no\"}"));
        }
    });
    {
        CurlURLSession session;
        URLRequest request = requestTo(server.url());
        request.method = "POST";
        request.headers = {{"Authorization", "Bearer k"}, {"X-Empty", ""}};
        request.body = QByteArray(100'000, 'b');
        const platform::URLResponse whole = session.data(request, {});
        EXPECT_EQ(whole.statusCode, 401);
        EXPECT_EQ(whole.body, "{\"error\":\n\"no\"}");
        const auto stream = session.bytes(requestTo(server.url()), {});
        EXPECT_EQ(stream->statusCode(), 401);
        EXPECT_THAT(readAll(*stream), ElementsAre("{\"error\":", "\"no\"}"));
        EXPECT_EQ(stream->nextLine(), std::nullopt);
    }
    qunsetenv("http_proxy");
    EXPECT_EQ(server.connectionCount(), 1);
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_TRUE(requests[0].startsWith("POST /path?query HTTP/1.1\r\nHost: 127.0.0.1:"));
    EXPECT_TRUE(requests[0].endsWith("\r\n\r\n" + QByteArray(100'000, 'b')));
    const std::string head = requests[0].first(requests[0].indexOf("\r\n\r\n")).toStdString();
    EXPECT_THAT(head, HasSubstr("\r\nAuthorization: Bearer k\r\nX-Empty:"));
    EXPECT_THAT(head, Not(HasSubstr("Expect")));
    EXPECT_THAT(head, Not(HasSubstr("Accept-Encoding")));
    EXPECT_TRUE(requests[1].startsWith("GET /path?query HTTP/1.1\r\n"));
}

TEST(CurlURLSession, GivesLinesWhileTheAnswerComesAndKeepsTheConnection) {
    // The server goes on only when the line before was read.
    std::promise<void> wantsSecond;
    std::promise<void> wantsThird;
    LoopbackServer server([&](LoopbackConnection &connection) {
        (void)connection.readRequest();
        if (connection.number() > 0) {
            connection.send(answerWith("200 OK", "another connection"));
            return;
        }
        connection.send(chunkedHead);
        connection.sendChunk("\uFEFFdata: one\r");
        wantsSecond.get_future().wait();
        connection.sendChunk("\ndata: \xF0\x9F");
        connection.sendChunk("\x98\x80\r\n");
        wantsThird.get_future().wait();
        connection.sendChunk("data: [DONE]\n\n");
        // Read by nobody any more.
        connection.sendChunk("data: late\n");
        connection.send("0\r\n\r\n");
        (void)connection.readRequest();
        connection.send(answerWith("200 OK", "again"));
        (void)connection.readRequest();
    });
    CurlURLSession session;
    auto stream = session.bytes(requestTo(server.url()), {});
    EXPECT_EQ(stream->nextLine(), "data: one");
    wantsSecond.set_value();
    EXPECT_EQ(stream->nextLine(), "data: \xF0\x9F\x98\x80");
    wantsThird.set_value();
    EXPECT_EQ(stream->nextLine(), "data: [DONE]");
    stream.reset();
    // The rest of the first answer is soon over, and its connection free; until then a new one is right.
    int attempts = 0;
    while (session.data(requestTo(server.url()), std::stop_token()).body != "again" && ++attempts < 100) {
    }
    EXPECT_LT(attempts, 100);
}

/// A server that begins so and says the rest again and again.
LoopbackServer::Handler repeating(const QByteArray &start, const QByteArray &rest, int times) {
    return [start, endless = rest.repeated(times)](LoopbackConnection &connection) {
        (void)connection.readRequest();
        connection.send(start);
        while (connection.send(endless)) {
        }
    };
}

TEST(CurlURLSession, EndsBadAnswersWithASentence) {
    const QByteArray ok = "HTTP/1.1 200 OK\r\n";
    const QByteArray open = ok + "\r\n";
    const struct {
        const char *name;
        LoopbackServer::Handler handler;
        std::string sentence;
    } cases[] = {
        {"closes at once", [](LoopbackConnection &) {}, "closed the connection|was lost"},
        {"breaks a chunked body", saying(chunkedHead + "5\r\nab"), "was lost"},
        {"never ends its head", repeating(ok, "X-More: of the same\r\n", 1000), "head of the answer is too long"},
        {"never ends a line", repeating(open, "x", 20'000), "A line of the answer is too long"},
        {"never ends", repeating(open, QByteArray("x\n").rightJustified(200, 'x'), 100), "The answer is too long"},
        {"stalls in the body",
         [open](LoopbackConnection &connection) {
             connection.send(open + "a\nb");
             EXPECT_TRUE(connection.awaitClosed());
         },
         "timed out"},
    };
    for (const auto &[name, handler, sentence] : cases) {
        LoopbackServer server(handler);
        CurlURLSession session;
        const auto timeout = QByteArray(name).startsWith("stalls") ? 300ms : 10s;
        EXPECT_THAT(failureOf(session, requestTo(server.url(), timeout)), testing::ContainsRegex(sentence)) << name;
    }
}

TEST(CurlURLSession, TellsWhatIsNotHTTPAndFollowsNoRedirect) {
    const std::pair<QByteArray, std::optional<int>> cases[]{
        {"SSH-2.0-OpenSSH_9.2\r\n", std::nullopt},
        {"HTTP/1.1 307 Go\r\nLocation: /elsewhere\r\nContent-Length: 0\r\n\r\n", 307}};
    for (const auto &[bytes, status] : cases) {
        LoopbackServer server(saying(bytes));
        CurlURLSession session;
        const auto stream = session.bytes(requestTo(server.url()), {});
        EXPECT_EQ(stream->statusCode(), status) << bytes.toStdString();
        EXPECT_EQ(stream->nextLine(), std::nullopt);
        EXPECT_EQ(session.data(requestTo(server.url()), {}).statusCode, status);
    }
}

TEST(CurlURLSession, RefusesRequestsThatCannotBeSent) {
    CurlURLSession session;
    for (const char *address : {"file:///etc/passwd", "", "https:///path"}) {
        EXPECT_THAT(failureOf(session, requestTo(QUrl(QString::fromUtf8(address)))), HasSubstr("not a web address"));
    }
    URLRequest request = requestTo(QUrl(u"http://127.0.0.1:1/"_s));
    EXPECT_EQ(failureOf(session, request), "Could not connect to the server.");
    request.headers = {{"Authorization", "Bearer k\r\nX-Other: 1"}};
    EXPECT_EQ(failureOf(session, request), "A header of the request holds a line break.");
}

TEST(CurlURLSession, WaitsAsLongAsSomethingComes) {
    LoopbackServer server([](LoopbackConnection &connection) {
        (void)connection.readRequest();
        connection.send(chunkedHead);
        for (int drop = 0; drop < 12; ++drop) {
            std::this_thread::sleep_for(100ms);
            connection.sendChunk(":");
        }
        connection.send("0\r\n\r\n");
    });
    CurlURLSession session;
    URLRequest request = requestTo(server.url(), 1s);
    EXPECT_THAT(readAll(*session.bytes(request, {})), ElementsAre("::::::::::::"));
    request.longestTime = 400ms;
    EXPECT_EQ(failureOf(session, request), "The request timed out.");
}

TEST(CurlURLSession, SlowsDownAServerThatIsFasterThanItsReader) {
    constexpr int blocks = 240;
    const QByteArray block = QByteArray(639, 'x').append('\n').repeated(100);
    std::atomic<int> sent = 0;
    LoopbackServer server([&](LoopbackConnection &connection) {
        (void)connection.readRequest();
        connection.send(chunkedHead);
        while (sent < blocks && connection.sendChunk(block)) {
            ++sent;
            sent.notify_all();
        }
        connection.send("0\r\n\r\n");
    });
    CurlURLSession session;
    const auto stream = session.bytes(requestTo(server.url()), {});
    // By then far more came than may wait for a reader.
    for (int before = sent; before < 20; before = sent) {
        sent.wait(before);
    }
    EXPECT_EQ(readAll(*stream), Lines(blocks * 100U, QByteArray(639, 'x')));
}

TEST(CurlURLSession, StreamsManyAnswersAtOnce) {
    LoopbackServer server([](LoopbackConnection &connection) {
        while (!connection.readRequest().isEmpty()) {
            connection.send(chunkedHead);
            for (int line = 0; line < 300; ++line) {
                connection.sendChunk(QByteArray::number(line) + "\r\n");
            }
            connection.send("0\r\n\r\n");
        }
    });
    CurlURLSession session;
    std::vector<std::future<Lines>> readers;
    for (int reader = 0; reader < 12; ++reader) {
        readers.push_back(
            std::async(std::launch::async, [&] { return readAll(*session.bytes(requestTo(server.url()), {})); }));
    }
    for (auto &reader : readers) {
        const Lines lines = reader.get();
        ASSERT_EQ(lines.size(), 300U);
        EXPECT_EQ(lines.back(), "299");
    }
}

/// Asks for an answer, stops once the condition holds, and tells whether the call was cancelled.
template <typename Ready> bool isCancelled(CurlURLSession &session, const QUrl &url, Ready ready) {
    std::stop_source stop;
    auto reading = std::async(std::launch::async, [&] {
        try {
            readAll(*session.bytes(requestTo(url, 1h), stop.get_token()));
        } catch (const CancellationError &) {
            return true;
        }
        return false;
    });
    ready();
    stop.request_stop();
    return reading.get();
}

TEST(CurlURLSession, CancelsAtOnceAndClosesTheConnection) {
    for (const QByteArray &start : {QByteArray(), QByteArray("HTTP/1.1 200 OK\r\n\r\nline\nhalf a l")}) {
        std::promise<void> asked;
        std::promise<bool> closed;
        LoopbackServer server([&](LoopbackConnection &connection) {
            (void)connection.readRequest();
            connection.send(start);
            asked.set_value();
            closed.set_value(connection.awaitClosed());
        });
        CurlURLSession session;
        EXPECT_TRUE(isCancelled(session, server.url(), [&] { asked.get_future().wait(); }));
        EXPECT_TRUE(closed.get_future().get());
    }
    CurlURLSession session;
    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_THROW((void)session.data(requestTo(QUrl(u"http://127.0.0.1:1/"_s)), stopped.get_token()), CancellationError);
}

TEST(CurlURLSession, LetsNobodyWaitForAHangingNameLookup) {
    LoopbackServer server(saying(answerWith("200 OK", "here")));
    const QUrl slow(u"http://slow.invalid/"_s);
    {
        CurlURLSession session;
        EXPECT_TRUE(isCancelled(session, slow, [&] { slowNameAsked.wait(false); }));
        EXPECT_EQ(session.data(requestTo(server.url()), {}).body, "here");
        EXPECT_EQ(failureOf(session, requestTo(slow, 50ms)), "The request timed out.");
        EXPECT_EQ(session.data(requestTo(server.url()), {}).body, "here");
    }
    // Not even the end of the session waited. Only now do the names get their answer.
    EXPECT_FALSE(slowNameAnswers);
    slowNameAnswers = true;
    slowNameAnswers.notify_all();
}

TEST(CurlURLSession, EndsItsStreamsWhenItGoes) {
    std::promise<void> started;
    LoopbackServer server([&](LoopbackConnection &connection) {
        (void)connection.readRequest();
        connection.send(chunkedHead);
        connection.sendChunk("line\n");
        EXPECT_TRUE(connection.awaitClosed());
    });
    auto session = std::make_unique<CurlURLSession>();
    const auto idle = session->bytes(requestTo(server.url()), {});
    const auto waiting = session->bytes(requestTo(server.url()), {});
    auto reader = std::async(std::launch::async, [&] {
        (void)waiting->nextLine();
        started.set_value();
        return waiting->nextLine();
    });
    started.get_future().wait();
    session.reset();
    EXPECT_THROW((void)reader.get(), URLError);
    EXPECT_EQ(idle->nextLine(), "line");
    EXPECT_THROW((void)idle->nextLine(), URLError);
}

} // namespace
} // namespace quillory::test
