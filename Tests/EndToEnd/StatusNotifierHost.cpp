// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/StatusNotifierHost.h"

#include "RealDesktop/ChildProcess.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>

#include <stdexcept>

namespace quillory::test {

namespace {
const auto watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const auto itemPath = QStringLiteral("/StatusNotifierItem");
} // namespace

StatusNotifierHost::StatusNotifierHost()
    : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("tray"))) {
    if (!m_bus.registerVirtualObject(QStringLiteral("/StatusNotifierWatcher"), this)) {
        throw std::runtime_error("the tray has no session bus");
    }
}

StatusNotifierHost::~StatusNotifierHost() {
    QDBusConnection::disconnectFromBus(QStringLiteral("tray"));
}

void StatusNotifierHost::appear() {
    m_bus.registerService(watcher);
}

bool StatusNotifierHost::appearInSteps() {
    m_isShown = false;
    m_timesAsked = 0;
    appear();
    const bool isAsked = waitUntil(
        [this] {
            QCoreApplication::processEvents();
            return m_timesAsked > 0;
        },
        60'000);
    m_isShown = true;
    m_bus.send(QDBusMessage::createSignal(QStringLiteral("/StatusNotifierWatcher"), watcher,
                                          QStringLiteral("StatusNotifierHostRegistered")));
    return isAsked;
}

void StatusNotifierHost::vanish() {
    m_bus.unregisterService(watcher);
    m_item.clear();
}

bool StatusNotifierHost::hasItem() {
    return waitUntil(
        [this] {
            QCoreApplication::processEvents();
            return !m_item.isEmpty();
        },
        60'000);
}

bool StatusNotifierHost::handleMessage(const QDBusMessage &message, const QDBusConnection &connection) {
    if (message.member() == QStringLiteral("RegisterStatusNotifierItem")) {
        m_item = message.arguments().value(0).toString();
        return connection.send(message.createReply());
    }
    if (message.member() == QStringLiteral("Get")) {
        ++m_timesAsked;
        return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(m_isShown))));
    }
    return false;
}

QString StatusNotifierHost::introspect(const QString & /*path*/) const {
    return QStringLiteral("<interface name=\"org.kde.StatusNotifierWatcher\">"
                          "<method name=\"RegisterStatusNotifierItem\"><arg type=\"s\" direction=\"in\"/></method>"
                          "<property name=\"IsStatusNotifierHostRegistered\" type=\"b\" access=\"read\"/></interface>");
}

QVariant StatusNotifierHost::property(const char *name) const {
    QDBusMessage question = QDBusMessage::createMethodCall(
        m_item, itemPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question.setArguments({itemInterface, QString::fromLatin1(name)});
    return m_bus.call(question).arguments().value(0).value<QDBusVariant>().variant();
}

QDBusMessage StatusNotifierHost::askMenu(const char *method, const QVariantList &arguments) const {
    QDBusMessage question =
        QDBusMessage::createMethodCall(m_item, property("Menu").value<QDBusObjectPath>().path(),
                                       QStringLiteral("com.canonical.dbusmenu"), QString::fromLatin1(method));
    question.setArguments(arguments);
    return m_bus.call(question);
}

std::vector<StatusNotifierHost::MenuItem> StatusNotifierHost::menuItems() const {
    const QDBusMessage layout = askMenu("GetLayout", {0, -1, QStringList()});
    const auto root = layout.arguments().value(1).value<QDBusArgument>();
    std::vector<MenuItem> items;
    int id = 0;
    QVariantMap properties;
    root.beginStructure();
    root >> id >> properties;
    root.beginArray();
    while (!root.atEnd()) {
        QDBusVariant child;
        root >> child;
        const auto entry = child.variant().value<QDBusArgument>();
        MenuItem item;
        entry.beginStructure();
        entry >> item.id >> item.properties;
        entry.endStructure();
        items.push_back(item);
    }
    root.endArray();
    root.endStructure();
    return items;
}

QString StatusNotifierHost::openedMenu() {
    askMenu("AboutToShow", {0});
    QStringList lines;
    for (const auto &[id, properties] : menuItems()) {
        if (!properties.value(QStringLiteral("visible"), true).toBool()) {
            continue;
        }
        const bool isChecked = properties.value(QStringLiteral("toggle-state")).toInt() == 1;
        QString line =
            (isChecked ? QStringLiteral("✓ ") : QString()) + properties.value(QStringLiteral("label")).toString();
        if (properties.contains(QStringLiteral("shortcut"))) {
            QList<QStringList> keys;
            properties.value(QStringLiteral("shortcut")).value<QDBusArgument>() >> keys;
            line += u' ' + keys.value(0).join(u'+');
        }
        lines += properties.value(QStringLiteral("type")) == QStringLiteral("separator") ? QStringLiteral("-") : line;
    }
    return lines.join(QStringLiteral(" | "));
}

void StatusNotifierHost::choose(const QString &title) {
    for (const auto &[id, properties] : menuItems()) {
        if (properties.value(QStringLiteral("label")) == title) {
            askMenu("Event", {id, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(0)), 0U});
        }
    }
}

} // namespace quillory::test
