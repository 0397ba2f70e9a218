// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The time from the first byte of an answer on the socket to the repaint of the card. The core, the network layer, the
// views and the window are the real ones; the field that is typed into is simulated.
#include "HalfRealDesktop.h"
#include "Quillory/Monitor/MonitorAssembly.h"
#include "Quillory/UI/Card/SuggestionStackView.h"
#include "StreamingService.h"

#include <QApplication>
#include <QWidget>

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

/// Answers each request with one piece, long after the cards have come up, and records when it was sent.
class Service {
  public:
    [[nodiscard]] int port() const { return m_server.port(); }
    [[nodiscard]] Clock::time_point sentAt() const { return m_sentAt; }

  private:
    std::atomic<Clock::time_point> m_sentAt;
    quillory::bench::StreamingService m_server{[this](httplib::DataSink &sink) {
        std::this_thread::sleep_for(900ms);
        m_sentAt = Clock::now();
        quillory::bench::StreamingService::sendPiece(sink, "Hello there, how are you?");
        std::this_thread::sleep_for(300ms);
    }};
};

/// Records when a card with text is painted for the first time.
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
    quillory::ui::SuggestionStackView m_host;
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
