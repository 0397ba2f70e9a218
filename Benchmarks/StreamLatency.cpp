// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// What a streamed answer costs in this program, compared with libcurl alone fetching the same bytes from the same
// server: CPU time of the process, and the time from a piece on the socket to onChunk.
#include "ClockTime.h"
#include "Platform/Linux/Network/CurlURLSession.h"
#include "Quillory/Model/OpenRouterClient.h"
#include "Quillory/Settings/AppSettings.h"
#include "SimulatedDesktop/SimulatedDesktop.h"
#include "Threaded/LoopbackServer.h"

#include <QCoreApplication>

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace quillory::test {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int pieces = 200;
constexpr int rounds = 15;
constexpr auto pace = 5ms;

QByteArray event(const QByteArray &content) {
    return R"(data: {"id":"gen-1760000000-abcdefghijklmnop","provider":"Anthropic","model":"anthropic/claude-haiku-4.5",)"
           R"("object":"chat.completion.chunk","created":1760000000,"choices":[{"index":0,"delta":{"role":"assistant",)"
           R"("content":")" +
           content + R"("},"finish_reason":null,"native_finish_reason":null,"logprobs":null}]})" + "\n\n";
}

/// Sends answers whose pieces contain the time of their sending in nanoseconds of the monotonic clock. Paced: with a
/// pause before each piece.
void serve(LoopbackConnection &connection, bool isPaced) {
    while (!connection.readRequest().isEmpty()) {
        connection.send(chunkedHead);
        for (int piece = 0; piece < pieces; ++piece) {
            if (isPaced) {
                std::this_thread::sleep_for(pace);
            }
            connection.sendChunk(event(QByteArray::number(qint64{Clock::now().time_since_epoch().count()}) + ' '));
        }
        connection.sendChunk("data: [DONE]\n\n");
        connection.send("0\r\n\r\n");
    }
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

/// The median CPU time of a call in milliseconds. The first call, which connects, does not count.
template <typename Call> double costOf(const Call &call) {
    call();
    std::vector<double> costs;
    for (int round = 0; round < rounds; ++round) {
        const double before = bench::milliseconds(CLOCK_PROCESS_CPUTIME_ID);
        call();
        costs.push_back(bench::milliseconds(CLOCK_PROCESS_CPUTIME_ID) - before);
    }
    return median(costs);
}

/// Collects how long pieces took from the server to here, in milliseconds.
class Latencies {
  public:
    /// text: begins with the time of its sending.
    void take(QByteArrayView text) {
        const auto now = Clock::now().time_since_epoch();
        const std::chrono::nanoseconds sent(text.first(text.indexOf(' ')).toLongLong());
        m_values.push_back(Milliseconds(now - sent).count());
    }
    [[nodiscard]] double medianValue() const { return median(m_values); }

  private:
    std::vector<double> m_values;
};

/// Fetches the answer with libcurl alone and drops it.
class PlainCurl {
  public:
    explicit PlainCurl(const QString &address) {
        const auto drop = [](char *, std::size_t size, std::size_t count, void *) { return size * count; };
        curl_easy_setopt(m_handle.get(), CURLOPT_URL, address.toUtf8().constData());
        curl_easy_setopt(m_handle.get(), CURLOPT_PROXY, "");
        curl_easy_setopt(m_handle.get(), CURLOPT_POST, 1L);
        curl_easy_setopt(m_handle.get(), CURLOPT_POSTFIELDS, "{}");
        curl_easy_setopt(m_handle.get(), CURLOPT_WRITEFUNCTION, static_cast<curl_write_callback>(drop));
    }
    void fetch() { curl_easy_perform(m_handle.get()); }
    void measure(Latencies &latencies) {
        const auto take = [](char *data, std::size_t size, std::size_t count, void *all) {
            const QByteArrayView text(data, static_cast<qsizetype>(size * count));
            const QByteArrayView opening("\"content\":\"");
            if (const qsizetype at = text.indexOf(opening); at >= 0) {
                static_cast<Latencies *>(all)->take(text.sliced(at + opening.size()));
            }
            return size * count;
        };
        curl_easy_setopt(m_handle.get(), CURLOPT_WRITEFUNCTION, static_cast<curl_write_callback>(take));
        curl_easy_setopt(m_handle.get(), CURLOPT_WRITEDATA, &latencies);
        fetch();
    }

  private:
    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> m_handle{curl_easy_init(), &curl_easy_cleanup};
};

/// A server in a process of its own, so that its work is not counted.
class ServerProcess {
  public:
    explicit ServerProcess(bool isPaced) {
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0) {
            std::perror("pipe");
            std::exit(EXIT_FAILURE);
        }
        m_child = fork();
        if (m_child == 0) {
            LoopbackServer server([isPaced](LoopbackConnection &connection) { serve(connection, isPaced); });
            const int port = server.url().port();
            (void)!write(ends[1], &port, sizeof port);
            pause();
        }
        (void)!read(ends[0], &m_port, sizeof m_port);
    }
    ~ServerProcess() {
        kill(m_child, SIGTERM);
        waitpid(m_child, nullptr, 0);
    }
    ServerProcess(const ServerProcess &) = delete;
    ServerProcess &operator=(const ServerProcess &) = delete;

    [[nodiscard]] QString address() const { return QStringLiteral("http://127.0.0.1:%1").arg(m_port); }

  private:
    pid_t m_child = -1;
    int m_port = 0;
};

/// Streams one answer as the program does.
void ask(const OpenRouterClient &client, const OpenRouterClient::OnChunk &onChunk) {
    client.stream(SuggestionKind::rewrite, QStringLiteral("helo can u send me the price list"), std::nullopt,
                  defaultModel, onChunk, {});
}

void report(const char *name, double ours, double plain) {
    std::printf("%-58s %8.3f ms   libcurl alone %8.3f ms   difference %7.3f ms\n", name, ours, plain, ours - plain);
}

void measureCost(const char *name, const OpenRouterClient &client, const QString &address) {
    PlainCurl plain(address);
    const double cost = costOf([&plain] { plain.fetch(); });
    report(name, costOf([&client] { ask(client, [](const QString &) {}); }), cost);
}

void measureLatency(const OpenRouterClient &client, const QString &address) {
    Latencies ours;
    Latencies plain;
    ask(client, [&ours, read = qsizetype{0}](const QString &accumulated) mutable {
        ours.take(accumulated.sliced(read).toUtf8());
        read = accumulated.size();
    });
    PlainCurl(address).measure(plain);
    report("from a piece on the socket to onChunk (median)", ours.medianValue(), plain.medianValue());
}

void measureAll() {
    // Before the first thread of this process.
    const ServerProcess burst(false);
    const ServerProcess paced(true);
    SimulatedDesktop desktop;
    platform::desktop::CurlURLSession session;
    const OpenRouterClient client(desktop.modelAccess.settings, desktop.process, session);
    desktop.userDefaults.set(settingsKey::openRouterAPIKey, QStringLiteral("sk-benchmark"));
    QString &service = desktop.process.variables[QStringLiteral("QUILLORY_MODEL_SERVICE")];
    service = burst.address();
    measureCost("CPU of an answer of 200 pieces, as fast as it goes", client, service);
    service = paced.address();
    measureCost("CPU of an answer of 200 pieces, one every 5 ms", client, service);
    measureLatency(client, service);
}

} // namespace
} // namespace quillory::test

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    quillory::test::measureAll();
}
