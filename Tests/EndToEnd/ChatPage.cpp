// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/ChatPage.h"

#include "RealDesktop/ChildProcess.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <httplib.h>
#include <openssl/evp.h>
#include <openssl/x509.h>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

struct Identity {
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key{EVP_EC_gen("P-256"), EVP_PKEY_free};
    std::unique_ptr<X509, decltype(&X509_free)> certificate{X509_new(), X509_free};
};

/// A self-signed certificate that is valid for an hour.
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

std::unique_ptr<httplib::Server> makeServer(bool https) {
    if (!https) {
        return std::make_unique<httplib::Server>();
    }
    const Identity identity = makeIdentity();
    return std::make_unique<httplib::SSLServer>(identity.certificate.get(), identity.key.get());
}

void serveFile(httplib::Server &server, const char *path, const QString &file, const char *type) {
    server.Get(path, [file, type](const httplib::Request &, httplib::Response &response) {
        QFile source(file);
        response.status = source.open(QFile::ReadOnly) ? 200 : 404;
        response.set_content(source.readAll().toStdString(), type);
    });
}

QPoint place(const QJsonValue &told) {
    return {qRound(told[u"x"_s].toDouble()), qRound(told[u"y"_s].toDouble())};
}

} // namespace

ChatPage::ChatPage(bool https) : m_server(makeServer(https)) {
    // Each connection that the browser keeps open occupies a thread.
    m_server->new_task_queue = [] { return new httplib::ThreadPool(48); };
    serve();
    m_port = m_server->bind_to_any_port("127.0.0.1");
    m_thread = std::jthread([this] { m_server->listen_after_bind(); });
}

ChatPage::~ChatPage() {
    m_server->stop();
}

void ChatPage::serve() {
    const QString folder = QStringLiteral(QUILLORY_PAGE_FOLDER);
    serveFile(*m_server, "/", folder + u"/index.html"_s, "text/html; charset=utf-8");
    serveFile(*m_server, "/chat.css", folder + u"/chat.css"_s, "text/css");
    serveFile(*m_server, "/chat.js", QStringLiteral(QUILLORY_PAGE_BUNDLE), "text/javascript; charset=utf-8");
    m_server->Post("/report", [this](const httplib::Request &request, httplib::Response &response) {
        const auto news = take(QJsonDocument::fromJson(QByteArray::fromStdString(request.body)).object());
        response.set_content(QJsonDocument(QJsonArray::fromStringList(news)).toJson().toStdString(),
                             "application/json");
    });
}

ChatPage::State ChatPage::state() const {
    const std::lock_guard lock(m_mutex);
    return m_state;
}

bool ChatPage::receive(const QString &message) {
    {
        const std::lock_guard lock(m_mutex);
        m_incoming.append(message);
    }
    return waitUntil([&] { return state().received == m_incoming.size(); });
}

QStringList ChatPage::take(const QJsonObject &report) {
    const std::lock_guard lock(m_mutex);
    if (report[u"load"_s].toDouble() < m_load) {
        return {}; // from the page before
    }
    m_load = report[u"load"_s].toDouble();
    m_state.address = report[u"page"_s].toString();
    m_state.chat = report[u"chat"_s].toString();
    m_state.text = report[u"text"_s].toString();
    m_state.sent = report[u"sent"_s].toVariant().toStringList();
    m_state.keys = report[u"keys"_s].toVariant().toStringList();
    m_state.blurs = report[u"blurs"_s].toInt();
    m_state.received = report[u"received"_s].toInt();
    m_state.focused = report[u"focused"_s].toBool();
    m_state.box = place(report[u"box"_s]);
    const QJsonObject chats = report[u"chats"_s].toObject();
    for (const QString &chat : chats.keys()) {
        m_state.chats[chat] = place(chats[chat]);
    }
    m_state.texts.clear();
    for (const QJsonValue &told : report[u"texts"_s].toArray()) {
        m_state.texts.push_back({told[u"kind"_s].toString(), told[u"side"_s].toString(), told[u"text"_s].toString()});
    }
    return m_incoming.mid(m_state.received);
}

} // namespace quillory::test
