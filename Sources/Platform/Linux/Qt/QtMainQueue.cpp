// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Qt/QtMainQueue.h"

#include <QTimer>

namespace platform::desktop {

void QtMainQueue::post(std::function<void()> work) {
    QMetaObject::invokeMethod(&m_receiver, std::move(work), Qt::QueuedConnection);
}

void QtMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> work) {
    // A timer belongs to the thread that starts it, and the caller's may have no event loop.
    post([this, delay, work = std::move(work)]() mutable {
        QTimer::singleShot(delay, Qt::PreciseTimer, &m_receiver, std::move(work));
    });
}

RegistrationHandle QtMainQueue::repeat(std::chrono::milliseconds interval, std::function<void()> work) {
    auto timer = std::make_shared<QTimer>();
    timer->setTimerType(Qt::PreciseTimer);
    timer->callOnTimeout(std::move(work));
    timer->start(interval);
    return std::make_unique<Registration>([timer] { timer->stop(); });
}

Instant QtMainQueue::now() const {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

} // namespace platform::desktop
