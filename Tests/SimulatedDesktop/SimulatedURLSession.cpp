// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "SimulatedDesktop/SimulatedURLSession.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

using namespace std::chrono_literals;

namespace quillory::test {

namespace {
constexpr auto patience = 10s;
} // namespace

/// The program's end of an exchange.
class SimulatedByteStream final : public platform::URLByteStream {
  public:
    SimulatedByteStream(std::shared_ptr<SimulatedExchange> exchange, std::stop_token stop)
        : m_exchange(std::move(exchange)), m_onStop(std::move(stop), [this] { m_exchange->cancel(); }) {
        m_status = m_exchange->awaitHead();
    }
    ~SimulatedByteStream() override { m_exchange->leave(); }
    SimulatedByteStream(const SimulatedByteStream &) = delete;
    SimulatedByteStream &operator=(const SimulatedByteStream &) = delete;

    [[nodiscard]] std::optional<int> statusCode() const override { return m_status; }
    std::optional<QByteArray> nextLine() override { return m_exchange->nextLine(); }

  private:
    std::shared_ptr<SimulatedExchange> m_exchange;
    std::optional<int> m_status;
    std::stop_callback<std::function<void()>> m_onStop;
};

QByteArray SimulatedExchange::header(const QByteArray &name) const {
    for (const auto &[key, value] : m_request.headers) {
        if (key == name) {
            return value;
        }
    }
    return {};
}

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
    const QJsonObject delta{{QStringLiteral("content"), content}};
    const QJsonArray choices{QJsonObject{{QStringLiteral("delta"), delta}}};
    const QJsonObject event{{QStringLiteral("choices"), choices}};
    line("data: " + QJsonDocument(event).toJson(QJsonDocument::Compact));
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

std::optional<int> SimulatedExchange::awaitHead() {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_cancelled || m_headSent || m_failure; });
    if (!m_cancelled && m_headSent) {
        return m_status;
    }
    // The constructor of the program's end fails, so that nobody else reports its end.
    m_left = true;
    m_changed.notify_all();
    if (m_cancelled) {
        throw platform::CancellationError();
    }
    throw platform::URLError(m_failure->toStdString());
}

std::optional<QByteArray> SimulatedExchange::nextLine() {
    std::unique_lock lock(m_mutex);
    m_hungry = true;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return m_cancelled || !m_lines.empty() || m_ended || m_failure; });
    if (m_cancelled) {
        throw platform::CancellationError();
    }
    if (m_lines.empty() && m_failure) {
        throw platform::URLError(m_failure->toStdString());
    }
    if (m_lines.empty()) {
        return std::nullopt;
    }
    m_hungry = false;
    QByteArray line = std::move(m_lines.front());
    m_lines.pop_front();
    return line;
}

void SimulatedExchange::cancel() {
    update([this] { m_cancelled = !m_left; });
}

void SimulatedExchange::leave() {
    update([this] { m_left = true; });
}

void SimulatedExchange::update(const std::function<void()> &change) {
    const std::scoped_lock lock(m_mutex);
    change();
    m_changed.notify_all();
}

bool SimulatedExchange::await(const std::function<bool()> &condition) {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, patience, condition);
}

SimulatedURLSession::~SimulatedURLSession() {
    for (const auto &exchange : m_exchanges) {
        exchange->fail(QStringLiteral("The test is over."));
    }
}

std::unique_ptr<platform::URLByteStream> SimulatedURLSession::bytes(const platform::URLRequest &request,
                                                                    std::stop_token stop) {
    return std::make_unique<SimulatedByteStream>(begin(request), std::move(stop));
}

platform::URLResponse SimulatedURLSession::data(const platform::URLRequest &request, std::stop_token stop) {
    SimulatedByteStream stream(begin(request), std::move(stop));
    QByteArrayList lines;
    while (const auto line = stream.nextLine()) {
        lines.append(*line);
    }
    return {.statusCode = stream.statusCode(), .body = lines.join('\n')};
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
    if (!m_came.wait_for(lock, patience, [&] { return m_exchanges.size() > index; })) {
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
    if (answer) {
        answer(*exchange);
    }
    return exchange;
}

} // namespace quillory::test
