// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Qt/QtMainQueue.h"

#include <QTimer>

namespace platform::desktop {

namespace {
class RepeatingTimer final : public Registration {
  public:
    RepeatingTimer(std::chrono::milliseconds interval, std::function<void()> work) {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.callOnTimeout(std::move(work));
        m_timer.start(interval);
    }

  private:
    QTimer m_timer;
};
} // namespace

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
    return std::make_unique<RepeatingTimer>(interval, std::move(work));
}

Instant QtMainQueue::now() const {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

} // namespace platform::desktop
