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

#include <xcb/xfixes.h>

#include <utility>

namespace platform::desktop {

namespace {
using namespace std::chrono_literals;

const auto watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto watcherPath = QStringLiteral("/StatusNotifierWatcher");
constexpr int longestAnswer = 5000;
/// How far apart a panel's two kinds of tray may start.
constexpr auto settling = 1s;
} // namespace

class LinuxStatusBar::Listening final : public Registration {
  public:
    explicit Listening(LinuxStatusBar &bar) : m_bar(bar), m_life(bar.m_life) {}
    ~Listening() override {
        if (!m_life.expired()) {
            m_bar.m_changed = nullptr;
        }
    }
    Listening(const Listening &) = delete;
    Listening &operator=(const Listening &) = delete;

  private:
    LinuxStatusBar &m_bar;
    std::weak_ptr<bool> m_life;
};

LinuxStatusBar::LinuxStatusBar(MainQueue &mainQueue, X11Connection &connection)
    : m_mainQueue(mainQueue), m_connection(connection) {
    watchTray();
    watchNotifiers();
    update();
}

LinuxStatusBar::~LinuxStatusBar() = default;

RegistrationHandle LinuxStatusBar::onChange(std::function<void()> changed) {
    m_changed = std::move(changed);
    return std::make_unique<Listening>(*this);
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

// The toolkit asks the same when the first icon is made, and keeps to the older kind of tray when the answer is no.
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

void LinuxStatusBar::watchTray() {
    m_trayAtom = m_connection.atom("_NET_SYSTEM_TRAY_S" + QByteArray::number(m_connection.screenNumber()));
    m_selectionEvent = static_cast<std::uint8_t>(m_connection.firstEvent(&xcb_xfixes_id) + XCB_XFIXES_SELECTION_NOTIFY);
    if (m_connection.has(&xcb_xfixes_id)) {
        const auto version = xcb_xfixes_query_version(m_connection.get(), 1, 0);
        (void)m_connection.reply(xcb_xfixes_query_version_reply, version);
        xcb_xfixes_select_selection_input(m_connection.get(), m_connection.root(), m_trayAtom,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        m_events = m_connection.onEvent([this](const xcb_generic_event_t &event) { handle(event); });
    }
    m_hasTray = hasTray();
}

bool LinuxStatusBar::hasTray() const {
    const auto found =
        m_connection.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(m_connection.get(), m_trayAtom));
    return found && found->owner != XCB_NONE;
}

void LinuxStatusBar::handle(const xcb_generic_event_t &event) {
    if (eventType(event) != m_selectionEvent ||
        eventAs<xcb_xfixes_selection_notify_event_t>(event).selection != m_trayAtom) {
        return;
    }
    m_mainQueue.postAfter(settling, [this, life = std::weak_ptr(m_life)] {
        if (!life.expired()) {
            m_hasTray = hasTray();
            update();
        }
    });
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
