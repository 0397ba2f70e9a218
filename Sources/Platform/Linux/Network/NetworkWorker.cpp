// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Network/NetworkWorker.h"

#include "Platform/Linux/Network/CurlExchange.h"

#include <csignal>

using namespace std::chrono_literals;

namespace platform::desktop {

namespace {
/// Long enough for the rest of an answer whose last event was read, short enough for one that never ends.
constexpr auto drainTime = 1s;
constexpr long keptConnections = 8;

/// Signals are for the main thread; and a TLS write to a closed connection would raise SIGPIPE.
void blockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}
} // namespace

struct NetworkWorker::Exchange : CurlExchange {
    using CurlExchange::CurlExchange;
    std::optional<Clock::time_point> drainEnd;

    [[nodiscard]] std::optional<Clock::time_point> deadline() const {
        if (drainEnd) {
            return drainEnd;
        }
        return isPaused ? std::nullopt : std::optional(lastData + transfer->request().timeout);
    }
};

bool WorkerMailbox::post(Ask ask, std::shared_ptr<Transfer> transfer) {
    const std::scoped_lock lock(m_mutex);
    if (m_multi == nullptr) {
        return false;
    }
    m_messages.emplace_back(ask, std::move(transfer));
    curl_multi_wakeup(m_multi);
    return true;
}

std::vector<WorkerMailbox::Message> WorkerMailbox::take() {
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_messages, {});
}

void WorkerMailbox::connect(CURLM *multi) {
    const std::scoped_lock lock(m_mutex);
    m_multi = multi;
}

NetworkWorker::NetworkWorker() {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    m_multi = curl_multi_init();
    curl_multi_setopt(m_multi, CURLMOPT_MAXCONNECTS, keptConnections);
    m_mailbox->connect(m_multi);
    m_thread = std::thread([this] { run(); });
}

NetworkWorker::~NetworkWorker() {
    m_mailbox->post(WorkerMailbox::Ask::quit, nullptr);
    m_thread.join();
    curl_multi_cleanup(m_multi);
    curl_global_cleanup();
}

void NetworkWorker::run() {
    blockSignals();
    while (handleMessages()) {
        int running = 0;
        curl_multi_perform(m_multi, &running);
        collectFinished();
        endOverdue();
        curl_multi_poll(m_multi, nullptr, 0, pollTimeout(), nullptr);
    }
    m_mailbox->connect(nullptr);
    // Requests that came after the last look are started too, only to be ended below.
    (void)handleMessages();
    while (!m_exchanges.empty()) {
        end(*m_exchanges.begin()->second, QStringLiteral("The program is shutting down."));
    }
}

/// False once the worker is to quit.
bool NetworkWorker::handleMessages() {
    bool goesOn = true;
    for (const auto &[ask, transfer] : m_mailbox->take()) {
        if (ask == WorkerMailbox::Ask::start) {
            start(transfer);
            continue;
        }
        goesOn = goesOn && ask != WorkerMailbox::Ask::quit;
        const auto found = m_exchanges.find(transfer.get());
        if (found == m_exchanges.end()) {
            continue;
        }
        if (ask == WorkerMailbox::Ask::resume) {
            resume(*found->second);
        } else if (ask == WorkerMailbox::Ask::drain) {
            drain(*found->second);
        } else {
            end(*found->second, std::nullopt);
        }
    }
    return goesOn;
}

void NetworkWorker::start(const std::shared_ptr<Transfer> &transfer) {
    auto exchange = std::make_unique<Exchange>(transfer);
    if (curl_multi_add_handle(m_multi, exchange->handle()) != CURLM_OK) {
        transfer->finish(sentenceFor(CURLE_FAILED_INIT));
        return;
    }
    m_exchanges.emplace(transfer.get(), std::move(exchange));
}

void NetworkWorker::resume(Exchange &exchange) {
    exchange.isPaused = false;
    exchange.lastData = Clock::now();
    const CURLcode code = curl_easy_pause(exchange.handle(), CURLPAUSE_CONT);
    if (code != CURLE_OK) {
        end(exchange, exchange.failure.value_or(sentenceFor(code)));
    }
}

void NetworkWorker::drain(Exchange &exchange) {
    exchange.isDraining = true;
    exchange.drainEnd = Clock::now() + drainTime;
    if (exchange.isPaused) {
        resume(exchange);
    }
}

void NetworkWorker::collectFinished() {
    int left = 0;
    while (const CURLMsg *message = curl_multi_info_read(m_multi, &left)) {
        CurlExchange *finished = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &finished);
        const auto found = m_exchanges.find(finished->transfer.get());
        if (found != m_exchanges.end()) {
            end(*found->second, finished->outcome(message->data.result));
        }
    }
}

void NetworkWorker::endOverdue() {
    const auto now = Clock::now();
    std::vector<Exchange *> overdue;
    for (const auto &[transfer, exchange] : m_exchanges) {
        if (const auto deadline = exchange->deadline(); deadline && *deadline <= now) {
            overdue.push_back(exchange.get());
        }
    }
    for (Exchange *exchange : overdue) {
        end(*exchange, sentenceFor(CURLE_OPERATION_TIMEDOUT));
    }
}

/// Milliseconds until the next exchange is overdue. Curl shortens this to its own needs.
int NetworkWorker::pollTimeout() const {
    std::chrono::milliseconds shortest = 1h;
    const auto now = Clock::now();
    for (const auto &[transfer, exchange] : m_exchanges) {
        if (const auto deadline = exchange->deadline()) {
            shortest = std::min(shortest, std::chrono::ceil<std::chrono::milliseconds>(*deadline - now));
        }
    }
    return static_cast<int>(std::max(shortest, 0ms).count());
}

/// Destroys the exchange. If the transfer is not complete its connection is closed.
void NetworkWorker::end(Exchange &exchange, const std::optional<QString> &failure) {
    const std::shared_ptr<Transfer> transfer = exchange.transfer;
    curl_multi_remove_handle(m_multi, exchange.handle());
    m_exchanges.erase(transfer.get());
    transfer->finish(failure);
}

} // namespace platform::desktop
