// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// What two answers that come at 200 pieces a second each cost the main thread, and how often their cards are updated.
#include "ClockTime.h"
#include "HalfRealDesktop.h"
#include "Quillory/Monitor/MonitorAssembly.h"
#include "Quillory/UI/Card/SuggestionViewHost.h"

#include <QApplication>

#include <httplib.h>

#include <atomic>
#include <cstdio>
#include <thread>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int pieces = 800;
constexpr auto pieceInterval = 5ms;

/// Answers with pieces at that rate, at the same time to whoever asks.
class Service {
  public:
    Service() {
        m_server.Post("/api/v1/chat/completions", [this](const httplib::Request &, httplib::Response &response) {
            response.set_chunked_content_provider("text/event-stream", [this](std::size_t, httplib::DataSink &sink) {
                auto next = Clock::now() + 1s; // by then the cards are up
                for (int i = 0; i < pieces; ++i, next += pieceInterval) {
                    std::this_thread::sleep_until(next);
                    const std::string event = R"(data: {"choices":[{"delta":{"content":")" +
                                              std::string(i % 4 == 3 ? "w " : "or") + R"("}}]})" + "\n\n";
                    sink.write(event.data(), event.size());
                    m_hasBegun = true;
                }
                ++m_answered;
                sink.done();
                return true;
            });
        });
        m_port = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::jthread([this] { m_server.listen_after_bind(); });
    }
    ~Service() { m_server.stop(); }
    [[nodiscard]] int port() const { return m_port; }
    [[nodiscard]] bool hasBegun() const { return m_hasBegun; }
    [[nodiscard]] bool isDone() const { return m_answered == 2; }

  private:
    httplib::Server m_server;
    std::atomic<bool> m_hasBegun = false;
    std::atomic<int> m_answered = 0;
    int m_port = 0;
    std::jthread m_thread;
};

/// The program's own views, counting the updates.
class CountingHost final : public quillory::SuggestionHost {
  public:
    explicit CountingHost(int &updates) : m_updates(updates) {}
    platform::Size setRootView(const quillory::SuggestionCards &cards, double width, std::function<void(int)> onAccept,
                               std::function<void()> onDismiss) override {
        ++m_updates;
        return m_host.setRootView(cards, width, std::move(onAccept), std::move(onDismiss));
    }
    QObject *view() override { return m_host.view(); }

  private:
    int &m_updates;
    quillory::ui::SuggestionViewHost m_host;
};

} // namespace

int main(int argc, char **argv) {
    const QApplication application(argc, argv);
    Service service;
    quillory::HalfRealDesktop desktop(service.port());
    desktop.set(quillory::settingsKey::compareMode, true);
    int updates = 0;
    quillory::MonitorAssembly program(desktop.services(), [&] { return std::make_unique<CountingHost>(updates); });
    program.monitor.start();
    const auto started = Clock::now();
    quillory::runEventsUntil([&] { return Clock::now() > started + 500ms; }); // the empty box has been seen
    desktop.type(QStringLiteral("helo can u send me the price list"));
    quillory::runEventsUntil([&] { return service.hasBegun(); });
    updates = 0;
    const double cpu = quillory::bench::milliseconds(CLOCK_THREAD_CPUTIME_ID);
    const auto begin = Clock::now();
    quillory::runEventsUntil([&] { return service.isDone(); });
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    if (!service.isDone()) {
        std::puts("the answers did not end");
        return 1;
    }
    std::printf("two answers of %d pieces in %.1f s: main thread %.1f %% of one core, %.1f card updates a second\n",
                pieces, seconds, (quillory::bench::milliseconds(CLOCK_THREAD_CPUTIME_ID) - cpu) / (1e3 * seconds) * 100,
                updates / seconds);
    return 0;
}
