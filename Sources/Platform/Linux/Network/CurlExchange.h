// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Network/Transfer.h"

#include <curl/curl.h>

namespace platform::desktop {

/// What went wrong, as a sentence for users.
[[nodiscard]] QString sentenceFor(CURLcode code);

/// A transfer in curl's terms. Worker thread only.
class CurlExchange {
  public:
    explicit CurlExchange(std::shared_ptr<Transfer> exchanged);
    CurlExchange(const CurlExchange &) = delete;
    CurlExchange &operator=(const CurlExchange &) = delete;

    [[nodiscard]] CURL *handle() const { return m_handle.get(); }
    /// What curl's result means for the reader: absent for success.
    [[nodiscard]] std::optional<QString> outcome(CURLcode result);

    const std::shared_ptr<Transfer> transfer;
    /// When data last came from the server; at first the start of the exchange.
    std::chrono::steady_clock::time_point lastData = std::chrono::steady_clock::now();
    bool isPaused = false;
    /// Whether the rest of the body is dropped as it comes.
    bool isDraining = false;
    /// Why one of the callbacks below made curl give up.
    std::optional<QString> failure;

  private:
    template <typename Value> void set(CURLoption option, Value value);
    void setRequest();
    void setLimits();
    void setCallbacks();
    void addHeader(const QByteArray &header);
    std::size_t headLine(QByteArrayView line);
    bool headEnd(long status);
    std::size_t body(QByteArrayView bytes);

    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> m_handle{curl_easy_init(), &curl_easy_cleanup};
    std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> m_headers{nullptr, &curl_slist_free_all};
    qsizetype m_headSize = 0;
    qsizetype m_drained = 0;
    bool m_hasHead = false;
};

} // namespace platform::desktop
