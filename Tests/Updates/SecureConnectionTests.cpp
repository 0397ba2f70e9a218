// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Network/CurlURLSession.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <httplib.h>

#include <thread>

namespace quillory::test {
namespace {

using namespace Qt::StringLiterals;
using platform::URLRequest;
using platform::desktop::CurlURLSession;

/// A server on this computer with a certificate of its own.
class SecureServer {
  public:
    SecureServer(const QTemporaryDir &folder, const QString &host) : m_certificate(folder.filePath(host)) {
        const QString key = m_certificate + u".key"_s;
        const int made = QProcess::execute(
            u"openssl"_s,
            u"req -x509 -newkey ed25519 -nodes -subj /CN=Test -addext subjectAltName=DNS:%1 -keyout %2 -out %3"_s
                .arg(host, key, m_certificate)
                .split(u' '));
        if (made != 0) {
            throw std::runtime_error("openssl made no certificate");
        }
        m_server = std::make_unique<httplib::SSLServer>(qPrintable(m_certificate), qPrintable(key));
        m_server->Get("/page", [](const auto &, auto &answer) { answer.set_content("hello", "text/plain"); });
        m_server->Get("/to-http", [](const auto &, auto &answer) { answer.set_redirect("http://localhost:1/"); });
        m_server->Get("/to-page", [](const auto &, auto &answer) { answer.set_redirect("/page"); });
        m_port = m_server->bind_to_any_port("localhost");
        m_thread = std::thread([this] { m_server->listen_after_bind(); });
    }
    ~SecureServer() {
        m_server->stop();
        m_thread.join();
    }
    SecureServer(const SecureServer &) = delete;
    SecureServer &operator=(const SecureServer &) = delete;

    [[nodiscard]] QByteArray certificate() const { return m_certificate.toUtf8(); }
    /// The body, or what went wrong.
    [[nodiscard]] std::string answerTo(const char *path) const {
        URLRequest request;
        request.url = QUrl(u"https://localhost:%1%2"_s.arg(m_port).arg(QLatin1StringView(path)));
        request.followsRedirects = true;
        CurlURLSession session;
        try {
            return session.data(request, {}).body.toStdString();
        } catch (const platform::URLError &error) {
            return error.what();
        }
    }

  private:
    QString m_certificate;
    std::unique_ptr<httplib::SSLServer> m_server;
    int m_port = 0;
    std::thread m_thread;
};

TEST(SecureConnection, IsMadeOnlyToWhomACertificateVouchesForAndNeverLeftForAPlainOne) {
    const std::string notVerified = "The server's certificate could not be verified.";
    const QTemporaryDir folder;
    const SecureServer server(folder, u"localhost"_s);
    EXPECT_EQ(server.answerTo("/page"), notVerified) << "nobody we know signed it";
    const SecureServer other(folder, u"elsewhere.example"_s);
    qputenv("SSL_CERT_FILE", other.certificate());
    EXPECT_EQ(other.answerTo("/page"), notVerified) << "it is another host's";
    qputenv("SSL_CERT_FILE", server.certificate());
    EXPECT_EQ(server.answerTo("/to-page"), "hello");
    EXPECT_EQ(server.answerTo("/to-http"), "The server points to an address that is not secure.");
    qunsetenv("SSL_CERT_FILE");
}

} // namespace
} // namespace quillory::test
