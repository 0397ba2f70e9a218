// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/URLSession.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace quillory::test {

using namespace Qt::StringLiterals;

/// One request of the program and a test's hold on its answer: nothing is answered until the test says so. Every
/// operation may be called from any thread; the awaiting ones give up after ten seconds.
class SimulatedExchange {
  public:
    explicit SimulatedExchange(const platform::URLRequest &request) : m_request(request) {}

    [[nodiscard]] const platform::URLRequest &request() const { return m_request; }
    [[nodiscard]] QJsonObject json() const { return QJsonDocument::fromJson(m_request.body).object(); }

    /// Sends the head of the answer; without a status it is not HTTP. Left out, the first line brings a 200.
    void respond(std::optional<int> status) {
        update([&] {
            m_status = status;
            m_headSent = true;
        });
    }
    /// Sends one line of the body. A whole body has its lines joined by LF.
    void line(const QByteArray &line) {
        update([&] {
            m_headSent = true;
            m_hungry = false;
            m_lines.push_back(line);
        });
    }
    void piece(const QString &content) {
        const QJsonObject choice{{u"delta"_s, QJsonObject{{u"content"_s, content}}}};
        const QJsonDocument event(QJsonObject{{u"choices"_s, QJsonArray{choice}}});
        line("data: " + event.toJson(QJsonDocument::Compact));
    }
    void end() {
        update([&] { m_headSent = m_ended = true; });
    }
    /// Breaks the transfer: the program meets a URLError once it has read what came before.
    void fail(const QString &message) {
        update([&] { m_failure = message; });
    }
    void answer(const QStringList &pieces) {
        for (const QString &content : pieces) {
            piece(content);
        }
        line("data: [DONE]");
        end();
    }

    /// Waits until the program has taken everything and asks for more, or has left. False when it does not.
    [[nodiscard]] bool awaitRead() {
        return await([this] { return m_left || (m_hungry && m_lines.empty()); });
    }
    /// Waits until the program has left: it read to the end, let go of the answer, or was cancelled.
    [[nodiscard]] bool awaitLeft() {
        return await([this] { return m_left; });
    }
    /// Whether the stop token of the request asked for the end before the program had left.
    [[nodiscard]] bool wasCancelled() const {
        const std::scoped_lock lock(m_mutex);
        return m_cancelled;
    }

  private:
    friend class SimulatedByteStream;
    void update(const std::function<void()> &change) {
        const std::scoped_lock lock(m_mutex);
        change();
        m_changed.notify_all();
    }
    [[nodiscard]] bool await(const std::function<bool()> &condition) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(10), condition);
    }
    /// Waits on the program's side, holding the lock thereafter. Throws when the request is cancelled.
    std::unique_lock<std::mutex> awaitTest(const std::function<bool()> &condition) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_cancelled || m_failure || condition(); });
        if (m_cancelled) {
            throw platform::CancellationError();
        }
        return lock;
    }

    const platform::URLRequest m_request;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_headSent = false;
    std::optional<int> m_status = 200;
    std::deque<QByteArray> m_lines;
    bool m_ended = false;
    std::optional<QString> m_failure;
    bool m_hungry = false;
    bool m_left = false;
    bool m_cancelled = false;
};

/// The program's end of an exchange.
class SimulatedByteStream final : public platform::URLByteStream {
  public:
    SimulatedByteStream(std::shared_ptr<SimulatedExchange> exchange, std::stop_token stop)
        : m_exchange(std::move(exchange)), m_onStop(std::move(stop), [this] {
              m_exchange->update([this] { m_exchange->m_cancelled = !m_exchange->m_left; });
          }) {}
    ~SimulatedByteStream() override {
        m_exchange->update([this] { m_exchange->m_left = true; });
    }
    SimulatedByteStream(const SimulatedByteStream &) = delete;
    SimulatedByteStream &operator=(const SimulatedByteStream &) = delete;

    void awaitHead() const {
        const auto lock = m_exchange->awaitTest([this] { return m_exchange->m_headSent; });
        if (!m_exchange->m_headSent) {
            throw platform::URLError(m_exchange->m_failure->toStdString());
        }
    }
    [[nodiscard]] std::optional<int> statusCode() const override { return m_exchange->m_status; }
    std::optional<QByteArray> nextLine() override {
        m_exchange->update([this] { m_exchange->m_hungry = true; });
        auto &lines = m_exchange->m_lines;
        const auto lock = m_exchange->awaitTest([&] { return !lines.empty() || m_exchange->m_ended; });
        if (lines.empty() && m_exchange->m_failure) {
            throw platform::URLError(m_exchange->m_failure->toStdString());
        }
        if (lines.empty()) {
            return std::nullopt;
        }
        m_exchange->m_hungry = false;
        QByteArray line = std::move(lines.front());
        lines.pop_front();
        return line;
    }

  private:
    std::shared_ptr<SimulatedExchange> m_exchange;
    std::stop_callback<std::function<void()>> m_onStop;
};

/// A network whose other side is the test. Requests come from real threads; open ones fail when this is destroyed.
class SimulatedURLSession final : public platform::URLSession {
  public:
    ~SimulatedURLSession() override {
        for (const auto &exchange : m_exchanges) {
            exchange->fail(u"The test is over."_s);
        }
    }

    /// Answers the requests that come from now on, each on the thread that makes it.
    void onRequest(std::function<void(SimulatedExchange &)> answer) {
        const std::scoped_lock lock(m_mutex);
        m_answer = std::move(answer);
    }
    [[nodiscard]] int requestCount() const {
        const std::scoped_lock lock(m_mutex);
        return static_cast<int>(m_exchanges.size());
    }
    /// The request of that number, counted from 0 in the order of coming. Waits for it, and throws when none comes.
    [[nodiscard]] std::shared_ptr<SimulatedExchange> exchange(int number) {
        const auto index = static_cast<std::size_t>(number);
        std::unique_lock lock(m_mutex);
        if (!m_came.wait_for(lock, std::chrono::seconds(10), [&] { return m_exchanges.size() > index; })) {
            throw std::runtime_error("request number " + std::to_string(number) + " never came");
        }
        return m_exchanges[index];
    }

    [[nodiscard]] std::unique_ptr<platform::URLByteStream> bytes(const platform::URLRequest &request,
                                                                 std::stop_token stop) override {
        auto stream = std::make_unique<SimulatedByteStream>(begin(request), std::move(stop));
        stream->awaitHead();
        return stream;
    }
    [[nodiscard]] platform::URLResponse data(const platform::URLRequest &request, std::stop_token stop) override {
        const auto stream = bytes(request, std::move(stop));
        QByteArrayList lines;
        while (const auto line = stream->nextLine()) {
            lines.append(*line);
        }
        return {.statusCode = stream->statusCode(), .body = lines.join('\n')};
    }
    [[nodiscard]] QString download(const platform::URLRequest & /*request*/,
                                   const platform::DownloadProgress & /*progress*/, std::stop_token /*stop*/) override {
        throw platform::URLError("There is nothing to download.");
    }

  private:
    std::shared_ptr<SimulatedExchange> begin(const platform::URLRequest &request) {
        auto exchange = std::make_shared<SimulatedExchange>(request);
        std::unique_lock lock(m_mutex);
        m_exchanges.push_back(exchange);
        const auto answer = m_answer;
        m_came.notify_all();
        lock.unlock();
        answer(*exchange);
        return exchange;
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_came;
    std::vector<std::shared_ptr<SimulatedExchange>> m_exchanges;
    std::function<void(SimulatedExchange &)> m_answer = [](SimulatedExchange &) {};
};

} // namespace quillory::test
