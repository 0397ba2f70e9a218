// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Model/ConnectionCheck.h"

#include "Quillory/Model/OpenRouterClient.h"
#include "Quillory/RewriteError.h"
#include "Quillory/Settings/AppSettings.h"

namespace quillory {

namespace {

QString failure(const QString &description) {
    return QStringLiteral("✗ ") + description;
}

} // namespace

QString triedConnection(const AppSettings &settings, const OpenRouterClient &client, const std::stop_token &stop) {
    settings.store().askAgain();
    try {
        static_cast<void>(client.rewrite(QStringLiteral("helo this is a quik test mesage"), stop));
        return QStringLiteral("✓ Working");
    } catch (const RewriteError &error) {
        return failure(error.description());
    } catch (const std::exception &error) {
        return failure(QString::fromUtf8(error.what()));
    }
}

ConnectionCheck::ConnectionCheck(const AppSettings &settings, const OpenRouterClient &client,
                                 platform::MainQueue &mainQueue, std::function<void()> changed)
    : m_settings(settings), m_client(client), m_mainQueue(mainQueue), m_changed(std::move(changed)) {}

void ConnectionCheck::run() {
    if (m_isTesting) {
        return;
    }
    m_isTesting = true;
    m_result.reset();
    const auto done = m_life.whileAlive([this](const QString &result) { finish(result); });
    const auto task = m_tasks.start([this, done](const std::stop_token &stop) {
        m_mainQueue.post([done, result = triedConnection(m_settings, m_client, stop)] { done(result); });
    });
    if (task) {
        m_changed();
    } else {
        finish(failure(QStringLiteral("There is no thread for the request")));
    }
}

void ConnectionCheck::finish(const QString &result) {
    m_isTesting = false;
    m_result = result;
    m_changed();
}

} // namespace quillory
