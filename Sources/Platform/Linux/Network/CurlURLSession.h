// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Linux/Network/NetworkWorker.h"
#include "Platform/URLSession.h"

namespace platform::desktop {

/// HTTP and HTTPS (1.1 and 2) on libcurl. Certificates are verified, redirects not followed, compression not asked for.
/// The usual proxy variables of the environment hold, except for this computer itself. Bounds: a line of a stream
/// 1 MB, a body 16 MB, a head 256 kB; beyond them URLError. The network thread starts with the first request.
class CurlURLSession final : public URLSession {
  public:
    CurlURLSession() = default;
    /// Ends what still runs with URLError; streams may outlive the session.
    ~CurlURLSession() override = default;

    [[nodiscard]] std::unique_ptr<URLByteStream> bytes(const URLRequest &request, std::stop_token stop) override;
    [[nodiscard]] URLResponse data(const URLRequest &request, std::stop_token stop) override;

  private:
    std::shared_ptr<WorkerMailbox> mailbox();

    std::once_flag m_started;
    std::unique_ptr<NetworkWorker> m_worker;
};

} // namespace platform::desktop
