// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/URLSession.h"

#include <QJsonObject>

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace quillory::test {

/// One request of the program and a test's hold on its answer: nothing is answered until the test says so. Every
/// operation may be called from any thread; the awaiting ones give up after ten seconds.
class SimulatedExchange {
  public:
    explicit SimulatedExchange(const platform::URLRequest &request) : m_request(request) {}

    [[nodiscard]] const platform::URLRequest &request() const { return m_request; }
    /// The body of the request as a JSON object.
    [[nodiscard]] QJsonObject json() const;

    /// Sends the head of the answer; without a status it is not HTTP. Left out, the first line brings a 200.
    void respond(std::optional<int> status);
    /// Sends one line of the body. A whole body has its lines joined by LF.
    void line(const QByteArray &line);
    /// Sends the next piece of a streamed answer, as the model service would.
    void piece(const QString &content);
    /// Ends the body.
    void end();
    /// Breaks the transfer: the program meets a URLError once it has read what came before.
    void fail(const QString &message);
    /// Sends these pieces, "[DONE]" and the end.
    void answer(const QStringList &pieces);

    /// Waits until the program has taken everything and asks for more, or has left. False when it does not.
    [[nodiscard]] bool awaitRead();
    /// Waits until the program has left: it read to the end, let go of the answer, or was cancelled.
    [[nodiscard]] bool awaitLeft();
    /// Whether the stop token of the request asked for the end before the program had left.
    [[nodiscard]] bool wasCancelled() const;

  private:
    friend class SimulatedURLSession;
    friend class SimulatedByteStream;
    /// Changes something and wakes who waits.
    void update(const std::function<void()> &change);
    [[nodiscard]] bool await(const std::function<bool()> &condition);
    /// Waits on the program's side, holding the lock thereafter. Throws when the request is cancelled.
    std::unique_lock<std::mutex> awaitTest(const std::function<bool()> &condition);

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

/// A network whose other side is the test. Requests come from real threads; open ones fail when this is destroyed.
class SimulatedURLSession final : public platform::URLSession {
  public:
    ~SimulatedURLSession() override;

    [[nodiscard]] std::unique_ptr<platform::URLByteStream> bytes(const platform::URLRequest &request,
                                                                 std::stop_token stop) override;
    [[nodiscard]] platform::URLResponse data(const platform::URLRequest &request, std::stop_token stop) override;
    /// There is nothing to download.
    [[nodiscard]] QString download(const platform::URLRequest &request, const platform::DownloadProgress &progress,
                                   std::stop_token stop) override;

    /// Answers the requests that come from now on, each on the thread that makes it.
    void onRequest(std::function<void(SimulatedExchange &)> answer);
    [[nodiscard]] int requestCount() const;
    /// The request of that number, counted from 0 in the order of coming. Waits for it, and throws when none comes.
    [[nodiscard]] std::shared_ptr<SimulatedExchange> exchange(int number);

  private:
    std::shared_ptr<SimulatedExchange> begin(const platform::URLRequest &request);

    mutable std::mutex m_mutex;
    std::condition_variable m_came;
    std::vector<std::shared_ptr<SimulatedExchange>> m_exchanges;
    std::function<void(SimulatedExchange &)> m_answer = [](SimulatedExchange &) {};
};

} // namespace quillory::test
