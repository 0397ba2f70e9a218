// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Network/NetworkWorker.h"
#include "Platform/URLSession.h"

namespace platform::desktop {

class BodyReader;

/// HTTP and HTTPS (1.1 and 2) on libcurl. Certificates are verified, redirects are followed only on request,
/// compression is not asked for. The usual proxy variables apply, except to this computer itself. Limits: 1 MB for a
/// line of a stream, 256 kB for a head, for a body what the request says; an answer beyond them is a URLError. The
/// network thread starts with the first request.
class CurlURLSession final : public URLSession {
  public:
    CurlURLSession() = default;
    /// Ends running exchanges with URLError; streams may outlive the session.
    ~CurlURLSession() override = default;

    [[nodiscard]] std::unique_ptr<URLByteStream> bytes(const URLRequest &request, std::stop_token stop) override;
    [[nodiscard]] URLResponse data(const URLRequest &request, std::stop_token stop) override;
    [[nodiscard]] QString download(const URLRequest &request, const DownloadProgress &progress,
                                   std::stop_token stop) override;

  private:
    using Receive = std::function<void(BodyReader &)>;
    void exchange(URLRequest request, const std::stop_token &stop, const Receive &receive);
    std::shared_ptr<WorkerMailbox> mailbox();

    std::once_flag m_started;
    std::unique_ptr<NetworkWorker> m_worker;
};

} // namespace platform::desktop
