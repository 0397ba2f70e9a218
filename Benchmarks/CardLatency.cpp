// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// From the first byte of an answer on the socket to the card's repaint: the program's core, its network layer, its
// views and its window are the real ones; only the field that is typed into is simulated.

#include "HalfRealDesktop.h"
#include "Quillory/Monitor/MonitorAssembly.h"
#include "Quillory/UI/Card/SuggestionViewHost.h"

#include <QApplication>
#include <QWidget>

#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using quillory::runEventsUntil;

constexpr int rounds = 15;
constexpr double throttleMs = 80;
constexpr double frameMs = 1000.0 / 60;

/// Answers each request with one piece, when the cards have long been up, and notes when it sent it.
class Service {
  public:
    Service() {
        m_server.Post("/api/v1/chat/completions", [this](const httplib::Request &, httplib::Response &response) {
            response.set_chunked_content_provider("text/event-stream", [this](std::size_t, httplib::DataSink &sink) {
                std::this_thread::sleep_for(900ms);
                const std::string event = R"(data: {"choices":[{"delta":{"content":"Hello there, how are you?"}}]})"
                                          "\n\n";
                m_sentAt = Clock::now();
                sink.write(event.data(), event.size());
                std::this_thread::sleep_for(300ms);
                sink.done();
                return true;
            });
        });
        m_port = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::jthread([this] { m_server.listen_after_bind(); });
    }
    ~Service() { m_server.stop(); }
    [[nodiscard]] int port() const { return m_port; }
    [[nodiscard]] Clock::time_point sentAt() const { return m_sentAt; }

  private:
    httplib::Server m_server;
    std::atomic<Clock::time_point> m_sentAt;
    int m_port = 0;
    std::jthread m_thread;
};

/// Notes when a card that has a text is painted for the first time.
class WatchingHost final : public quillory::SuggestionHost, public QObject {
  public:
    explicit WatchingHost(std::vector<double> &latencies, const Service &service)
        : m_latencies(latencies), m_service(service) {
        qApp->installEventFilter(this);
    }
    platform::Size setRootView(const quillory::SuggestionCards &cards, double width, std::function<void(int)> onAccept,
                               std::function<void()> onDismiss) override {
        const bool streaming = !cards.isEmpty() && cards.first().text && !cards.first().isComplete;
        m_due = streaming && !m_hadText;
        m_hadText = streaming;
        return m_host.setRootView(cards, width, std::move(onAccept), std::move(onDismiss));
    }
    QObject *view() override { return m_host.view(); }
    bool eventFilter(QObject *, QEvent *event) override {
        if (m_due && event->type() == QEvent::Paint) {
            m_due = false;
            m_latencies.push_back(std::chrono::duration<double, std::milli>(Clock::now() - m_service.sentAt()).count());
        }
        return false;
    }

  private:
    std::vector<double> &m_latencies;
    const Service &m_service;
    quillory::ui::SuggestionViewHost m_host;
    bool m_due = false;
    bool m_hadText = false;
};

void printResult(std::vector<double> latencies) {
    std::sort(latencies.begin(), latencies.end());
    const double median = latencies[latencies.size() / 2];
    std::printf("first byte sent -> card painted, %zu answers: median %.1f ms, worst %.1f ms\n", latencies.size(),
                median, latencies.back());
    std::printf("allowed: %.1f ms (the throttle and one frame); worst / allowed = %.2f\n", throttleMs + frameMs,
                latencies.back() / (throttleMs + frameMs));
}

} // namespace

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    Service service;
    quillory::HalfRealDesktop desktop(service.port());
    std::vector<double> latencies;
    quillory::MonitorAssembly program(desktop.services(),
                                      [&] { return std::make_unique<WatchingHost>(latencies, service); });
    program.monitor.start();
    for (int round = 0; round < rounds; ++round) {
        desktop.type(QStringLiteral("helo there how are you, number %1").arg(round));
        const auto before = latencies.size();
        runEventsUntil([&] { return latencies.size() > before; });
    }
    if (latencies.empty()) {
        std::puts("no card was painted");
        return 1;
    }
    printResult(latencies);
    return 0;
}
