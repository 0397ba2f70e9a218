// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/ChatPage.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <httplib.h>

#include <openssl/evp.h>
#include <openssl/x509.h>

namespace quillory::test {

namespace {

struct Identity {
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key{EVP_EC_gen("P-256"), EVP_PKEY_free};
    std::unique_ptr<X509, decltype(&X509_free)> certificate{X509_new(), X509_free};
};

/// Signed by itself and good for an hour; the browser is told to take any.
Identity makeIdentity() {
    Identity made;
    X509 *certificate = made.certificate.get();
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -60);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 3600);
    X509_set_pubkey(certificate, made.key.get());
    X509_NAME *name = X509_get_subject_name(certificate);
    const unsigned char common[] = "localhost";
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, common, -1, -1, 0);
    X509_set_issuer_name(certificate, name);
    X509_sign(certificate, made.key.get(), EVP_sha256());
    return made;
}

void serveFile(httplib::SSLServer &server, const char *path, const QString &file, const char *type) {
    server.Get(path, [file, type](const httplib::Request &, httplib::Response &response) {
        QFile source(file);
        response.status = source.open(QFile::ReadOnly) ? 200 : 404;
        response.set_content(source.readAll().toStdString(), type);
    });
}

QStringList strings(const QJsonValue &value) {
    return value.toVariant().toStringList();
}

} // namespace

ChatPage::ChatPage() {
    const Identity identity = makeIdentity();
    m_server = std::make_unique<httplib::SSLServer>(identity.certificate.get(), identity.key.get());
    // Each connection that the browser keeps open, used or not, holds a thread.
    m_server->new_task_queue = [] { return new httplib::ThreadPool(48); };
    const QString folder = QStringLiteral(QUILLORY_PAGE_FOLDER);
    serveFile(*m_server, "/", folder + QStringLiteral("/index.html"), "text/html; charset=utf-8");
    serveFile(*m_server, "/chat.css", folder + QStringLiteral("/chat.css"), "text/css");
    serveFile(*m_server, "/chat.js", QStringLiteral(QUILLORY_PAGE_BUNDLE), "text/javascript; charset=utf-8");
    m_server->Post("/report", [this](const httplib::Request &request, httplib::Response &) { take(request.body); });
    m_port = m_server->bind_to_any_port("127.0.0.1");
    m_thread = std::jthread([this] { m_server->listen_after_bind(); });
}

ChatPage::~ChatPage() {
    m_server->stop();
}

ChatPage::State ChatPage::state() const {
    const std::lock_guard lock(m_mutex);
    return m_state;
}

/// Reports travel on several connections and may overtake each other.
void ChatPage::take(const std::string &report) {
    const QJsonObject fields = QJsonDocument::fromJson(QByteArray::fromStdString(report)).object();
    const auto number = [&](const char *name) { return fields[QLatin1StringView(name)].toDouble(); };
    const auto sequence = static_cast<int>(number("sequence"));
    const std::lock_guard lock(m_mutex);
    if (number("load") < m_load || (number("load") == m_load && sequence < m_sequence)) {
        return;
    }
    m_load = number("load");
    m_sequence = sequence;
    m_state.address = fields[QStringLiteral("page")].toString();
    m_state.text = fields[QStringLiteral("text")].toString();
    m_state.sent = strings(fields[QStringLiteral("sent")]);
    m_state.keys = strings(fields[QStringLiteral("keys")]);
    m_state.blurs = static_cast<int>(number("blurs"));
    m_state.focused = fields[QStringLiteral("focused")].toBool();
    m_state.box = QPointF(number("x"), number("y")).toPoint();
}

} // namespace quillory::test
