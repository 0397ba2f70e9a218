// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/StatusBar/LinuxStatusBar.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QTimer>

#include <utility>

namespace platform::desktop {

namespace {
using namespace std::chrono_literals;

const auto watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto watcherPath = QStringLiteral("/StatusNotifierWatcher");
constexpr int longestAnswer = 5000;
/// How long after each other a panel's two kinds of tray may start.
constexpr auto settling = 1s;
} // namespace

LinuxStatusBar::LinuxStatusBar(MainQueue &mainQueue, bool hasEmbeddingTray)
    : m_mainQueue(mainQueue), m_hasTray(hasEmbeddingTray) {
    watchNotifiers();
    update();
}

LinuxStatusBar::~LinuxStatusBar() = default;

RegistrationHandle LinuxStatusBar::onChange(std::function<void()> changed) {
    m_changed = std::move(changed);
    return std::make_unique<Registration>(m_life.whileAlive([this] { m_changed = nullptr; }));
}

void LinuxStatusBar::tell(const QString &title, const QString &text) {
    const auto service = QStringLiteral("org.freedesktop.Notifications");
    QDBusMessage message = QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/Notifications"),
                                                          service, QStringLiteral("Notify"));
    constexpr int asLongAsUsual = -1;
    message.setArguments({QStringLiteral("Quillory"), 0U, QStringLiteral("quillory"), title, text, QStringList(),
                          QVariantMap(), asLongAsUsual});
    QDBusConnection::sessionBus().send(message);
}

void LinuxStatusBar::watchNotifiers() {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        m_busHasAnswered = true;
        return;
    }
    m_watcher = std::make_unique<QDBusServiceWatcher>(watcherName, bus, QDBusServiceWatcher::WatchForOwnerChange);
    QObject::connect(m_watcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, m_watcher.get(),
                     [this] { askForNotifiers(); });
    m_ask = std::make_unique<QTimer>();
    m_ask->setSingleShot(true);
    QObject::connect(m_ask.get(), &QTimer::timeout, m_ask.get(), [this] { askForNotifiers(); });
    for (const auto &signal :
         {QStringLiteral("StatusNotifierHostRegistered"), QStringLiteral("StatusNotifierHostUnregistered")}) {
        QDBusConnection(bus).connect(QString(), watcherPath, watcherName, signal, m_ask.get(), SLOT(start()));
    }
    askForNotifiers();
}

// Qt asks the same when the first icon is made, and keeps to the older kind of tray when the answer is no.
void LinuxStatusBar::askForNotifiers() {
    QDBusMessage question = QDBusMessage::createMethodCall(
        watcherName, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question.setArguments({watcherName, QStringLiteral("IsStatusNotifierHostRegistered")});
    question.setAutoStartService(false);
    auto *const call =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question, longestAnswer), m_watcher.get());
    QObject::connect(call, &QDBusPendingCallWatcher::finished, call, [this, call, number = ++m_timesAsked] {
        call->deleteLater();
        if (number != m_timesAsked) {
            return; // asked again since
        }
        const QDBusPendingReply<QDBusVariant> reply = *call;
        m_busHasAnswered = true;
        m_hasNotifiers = reply.isValid() && reply.value().variant().toBool();
        update();
    });
}

void LinuxStatusBar::embeddingTrayChanged(bool isThere) {
    m_mainQueue.postAfter(settling, m_life.whileAlive([this, isThere] {
        m_hasTray = isThere;
        update();
    }));
}

void LinuxStatusBar::update() {
    if (!m_usesNotifiers && m_busHasAnswered && (m_hasNotifiers || m_hasTray)) {
        m_usesNotifiers = m_hasNotifiers;
    }
    const bool isAvailable = m_usesNotifiers && (*m_usesNotifiers ? m_hasNotifiers : m_hasTray);
    if (std::exchange(m_isAvailable, isAvailable) != isAvailable && m_changed) {
        m_changed();
    }
}

} // namespace platform::desktop
