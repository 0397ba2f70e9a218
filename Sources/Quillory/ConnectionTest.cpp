// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/ConnectionTest.h"

#include "Platform/Platform.h"
#include "Quillory/AppSettings.h"
#include "Quillory/OpenRouterClient.h"
#include "Quillory/RewriteError.h"

namespace quillory {

namespace {

QString failure(const QString &description) {
    return QStringLiteral("✗ ") + description;
}

} // namespace

QString triedConnection(const std::stop_token &stop) {
    AppSettings::shared().store().askAgain();
    try {
        static_cast<void>(OpenRouterClient::rewrite(QStringLiteral("helo this is a quik test mesage"), stop));
        return QStringLiteral("✓ Working");
    } catch (const RewriteError &error) {
        return failure(error.description());
    } catch (const std::exception &error) {
        return failure(QString::fromUtf8(error.what()));
    }
}

ConnectionTest::ConnectionTest(std::function<void()> changed) : m_changed(std::move(changed)) {}

void ConnectionTest::run() {
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

void ConnectionTest::finish(const QString &result) {
    m_isTesting = false;
    m_result = result;
    m_changed();
}

} // namespace quillory
