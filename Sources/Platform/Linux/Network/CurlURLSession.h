// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Network/NetworkWorker.h"
#include "Platform/URLSession.h"

namespace platform::desktop {

class BodyReader;

/// HTTP and HTTPS (1.1 and 2) on libcurl. Certificates are verified, redirects followed on request only, compression
/// not asked for. The usual proxy variables of the environment hold, except for this computer itself. Bounds: a line of
/// a stream 1 MB, a head 256 kB, a body what the request says; beyond them URLError. The network thread starts with the
/// first request.
class CurlURLSession final : public URLSession {
  public:
    CurlURLSession() = default;
    /// Ends what still runs with URLError; streams may outlive the session.
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
