// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Model/ConnectionCheck.h"

#include "Platform/Platform.h"
#include "Quillory/Model/OpenRouterClient.h"
#include "Quillory/RewriteError.h"
#include "Quillory/Settings/AppSettings.h"

namespace quillory {

namespace {

QString failure(const QString &description) {
    return QStringLiteral("✗ ") + description;
}

} // namespace

QString triedConnection(const std::stop_token &stop) {
    AppSettings::shared().store().askAgain();
    try {
        static_cast<void>(
            OpenRouterClient::ofCurrent().rewrite(QStringLiteral("helo this is a quik test mesage"), stop));
        return QStringLiteral("✓ Working");
    } catch (const RewriteError &error) {
        return failure(error.description());
    } catch (const std::exception &error) {
        return failure(QString::fromUtf8(error.what()));
    }
}

ConnectionCheck::ConnectionCheck(std::function<void()> changed) : m_changed(std::move(changed)) {}

void ConnectionCheck::run() {
    if (m_isTesting) {
        return;
    }
    m_isTesting = true;
    m_result.reset();
    const auto task = m_tasks.start([this, life = std::weak_ptr(m_life)](const std::stop_token &stop) {
        platform::current().mainQueue.post([this, life, result = triedConnection(stop)] {
            if (!life.expired()) {
                finish(result);
            }
        });
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
