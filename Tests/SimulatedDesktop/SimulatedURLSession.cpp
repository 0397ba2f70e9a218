// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "SimulatedDesktop/SimulatedURLSession.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace quillory::test {

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

QJsonObject SimulatedExchange::json() const {
    return QJsonDocument::fromJson(m_request.body).object();
}

void SimulatedExchange::respond(std::optional<int> status) {
    update([&] {
        m_status = status;
        m_headSent = true;
    });
}

void SimulatedExchange::line(const QByteArray &line) {
    update([&] {
        m_headSent = true;
        m_hungry = false;
        m_lines.push_back(line);
    });
}

void SimulatedExchange::piece(const QString &content) {
    const QJsonObject choice{{u"delta"_qs, QJsonObject{{u"content"_qs, content}}}};
    const QJsonDocument event(QJsonObject{{u"choices"_qs, QJsonArray{choice}}});
    line("data: " + event.toJson(QJsonDocument::Compact));
}

void SimulatedExchange::end() {
    update([&] { m_headSent = m_ended = true; });
}

void SimulatedExchange::fail(const QString &message) {
    update([&] { m_failure = message; });
}

void SimulatedExchange::answer(const QStringList &pieces) {
    for (const QString &content : pieces) {
        piece(content);
    }
    line("data: [DONE]");
    end();
}

bool SimulatedExchange::awaitRead() {
    return await([this] { return m_left || (m_hungry && m_lines.empty()); });
}

bool SimulatedExchange::awaitLeft() {
    return await([this] { return m_left; });
}

bool SimulatedExchange::wasCancelled() const {
    const std::scoped_lock lock(m_mutex);
    return m_cancelled;
}

void SimulatedExchange::update(const std::function<void()> &change) {
    const std::scoped_lock lock(m_mutex);
    change();
    m_changed.notify_all();
}

bool SimulatedExchange::await(const std::function<bool()> &condition) {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::seconds(10), condition);
}

std::unique_lock<std::mutex> SimulatedExchange::awaitTest(const std::function<bool()> &condition) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] { return m_cancelled || m_failure || condition(); });
    if (m_cancelled) {
        throw platform::CancellationError();
    }
    return lock;
}

SimulatedURLSession::~SimulatedURLSession() {
    for (const auto &exchange : m_exchanges) {
        exchange->fail(u"The test is over."_qs);
    }
}

std::unique_ptr<platform::URLByteStream> SimulatedURLSession::bytes(const platform::URLRequest &request,
                                                                    std::stop_token stop) {
    auto stream = std::make_unique<SimulatedByteStream>(begin(request), std::move(stop));
    stream->awaitHead();
    return stream;
}

platform::URLResponse SimulatedURLSession::data(const platform::URLRequest &request, std::stop_token stop) {
    const auto stream = bytes(request, std::move(stop));
    QByteArrayList lines;
    while (const auto line = stream->nextLine()) {
        lines.append(*line);
    }
    return {.statusCode = stream->statusCode(), .body = lines.join('\n')};
}

QString SimulatedURLSession::download(const platform::URLRequest & /*request*/,
                                      const platform::DownloadProgress & /*progress*/, std::stop_token /*stop*/) {
    throw platform::URLError("There is nothing to download.");
}

void SimulatedURLSession::onRequest(std::function<void(SimulatedExchange &)> answer) {
    const std::scoped_lock lock(m_mutex);
    m_answer = std::move(answer);
}

int SimulatedURLSession::requestCount() const {
    const std::scoped_lock lock(m_mutex);
    return static_cast<int>(m_exchanges.size());
}

std::shared_ptr<SimulatedExchange> SimulatedURLSession::exchange(int number) {
    const auto index = static_cast<std::size_t>(number);
    std::unique_lock lock(m_mutex);
    if (!m_came.wait_for(lock, std::chrono::seconds(10), [&] { return m_exchanges.size() > index; })) {
        throw std::runtime_error("request number " + std::to_string(number) + " never came");
    }
    return m_exchanges[index];
}

std::shared_ptr<SimulatedExchange> SimulatedURLSession::begin(const platform::URLRequest &request) {
    auto exchange = std::make_shared<SimulatedExchange>(request);
    std::unique_lock lock(m_mutex);
    m_exchanges.push_back(exchange);
    const auto answer = m_answer;
    m_came.notify_all();
    lock.unlock();
    answer(*exchange);
    return exchange;
}

} // namespace quillory::test
