// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// What two answers of 200 pieces a second each cost the main thread, and how often their cards are updated.
#include "ClockTime.h"
#include "HalfRealDesktop.h"
#include "Quillory/Monitor/MonitorAssembly.h"
#include "Quillory/UI/Card/SuggestionStackView.h"
#include "StreamingService.h"

#include <QApplication>

#include <atomic>
#include <cstdio>
#include <thread>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int pieces = 800;
constexpr auto pieceInterval = 5ms;

/// Answers with pieces at that rate, and several requests at once.
class Service {
  public:
    [[nodiscard]] int port() const { return m_server.port(); }
    [[nodiscard]] bool hasBegun() const { return m_hasBegun; }
    [[nodiscard]] bool isDone() const { return m_answered == 2; }

  private:
    std::atomic<bool> m_hasBegun = false;
    std::atomic<int> m_answered = 0;
    quillory::bench::StreamingService m_server{[this](httplib::DataSink &sink) {
        auto next = Clock::now() + 1s; // the cards are up by then
        for (int i = 0; i < pieces; ++i, next += pieceInterval) {
            std::this_thread::sleep_until(next);
            quillory::bench::StreamingService::sendPiece(sink, i % 4 == 3 ? "w " : "or");
            m_hasBegun = true;
        }
        ++m_answered;
    }};
};

/// The program's own views. Counts the updates.
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
    quillory::ui::SuggestionStackView m_host;
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
