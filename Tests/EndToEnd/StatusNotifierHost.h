// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RealDesktop/ChildProcess.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QVariant>

#include <functional>
#include <stdexcept>
#include <vector>

namespace quillory::test {

using namespace Qt::StringLiterals;

inline const auto watcher = u"org.kde.StatusNotifierWatcher"_s;
inline const auto itemInterface = u"org.kde.StatusNotifierItem"_s;
inline const auto itemPath = u"/StatusNotifierItem"_s;

/// A desktop's tray that speaks the StatusNotifierItem protocol, as a panel does, and reads the menu of the item that
/// registers with it.
class StatusNotifierHost final : private QDBusVirtualObject {
  public:
    StatusNotifierHost() : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"tray"_s)) {
        if (!m_bus.registerVirtualObject(u"/StatusNotifierWatcher"_s, this)) {
            throw std::runtime_error("the tray has no session bus");
        }
    }
    ~StatusNotifierHost() override { QDBusConnection::disconnectFromBus(u"tray"_s); }

    /// Takes or gives up the name under which items look for the tray.
    void appear() { m_bus.registerService(watcher); }
    /// Takes the name without a tray behind it, waits until an item asks for one, and then announces it.
    bool appearInSteps() {
        m_isShown = false;
        m_timesAsked = 0;
        appear();
        const bool isAsked = await([this] { return m_timesAsked > 0; });
        m_isShown = true;
        m_bus.send(QDBusMessage::createSignal(u"/StatusNotifierWatcher"_s, watcher, u"StatusNotifierHostRegistered"_s));
        return isAsked;
    }
    void vanish() {
        m_bus.unregisterService(watcher);
        m_item.clear();
    }
    /// Waits until an item has registered since the tray appeared.
    bool hasItem() {
        return await([this] { return !m_item.isEmpty(); });
    }
    /// Opens the menu and returns its visible items in order, with check marks.
    QString openedMenu() {
        askMenu("AboutToShow", {0});
        QStringList lines;
        for (const auto &[id, properties] : menuItems()) {
            if (!properties.value(u"visible"_s, true).toBool()) {
                continue;
            }
            const bool isChecked = properties.value(u"toggle-state"_s).toInt() == 1;
            const QString line = (isChecked ? u"✓ "_s : QString()) + properties.value(u"label"_s).toString();
            lines += properties.value(u"type"_s) == u"separator"_s ? u"-"_s : line;
        }
        return lines.join(u" | "_s);
    }
    /// Chooses an item by its title.
    void choose(const QString &title) {
        for (const auto &[id, properties] : menuItems()) {
            if (properties.value(u"label"_s) == title) {
                askMenu("Event", {id, u"clicked"_s, QVariant::fromValue(QDBusVariant(0)), 0U});
            }
        }
    }

  private:
    struct MenuItem {
        int id = 0;
        QVariantMap properties;
    };
    static bool await(const std::function<bool()> &condition) {
        return waitUntil(
            [&] {
                QCoreApplication::processEvents();
                return condition();
            },
            60'000);
    }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override {
        if (message.member() == u"RegisterStatusNotifierItem"_s) {
            m_item = message.arguments().value(0).toString();
            return connection.send(message.createReply());
        }
        if (message.member() == u"Get"_s) {
            ++m_timesAsked;
            return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(m_isShown))));
        }
        return false;
    }
    [[nodiscard]] QString introspect(const QString & /*path*/) const override {
        return u"<interface name=\"org.kde.StatusNotifierWatcher\">"
               "<method name=\"RegisterStatusNotifierItem\"><arg type=\"s\" direction=\"in\"/></method>"
               "<property name=\"IsStatusNotifierHostRegistered\" type=\"b\" access=\"read\"/></interface>"_s;
    }
    [[nodiscard]] std::vector<MenuItem> menuItems() const {
        const QDBusMessage layout = askMenu("GetLayout", {0, -1, QStringList()});
        const auto root = layout.arguments().value(1).value<QDBusArgument>();
        int id = 0;
        QVariantMap properties;
        QVariantList entries;
        root.beginStructure();
        root >> id >> properties >> entries;
        root.endStructure();
        std::vector<MenuItem> items(static_cast<std::size_t>(entries.size()));
        for (std::size_t i = 0; i < items.size(); ++i) {
            const auto entry = entries[static_cast<qsizetype>(i)].value<QDBusArgument>();
            entry.beginStructure();
            entry >> items[i].id >> items[i].properties;
            entry.endStructure();
        }
        return items;
    }
    [[nodiscard]] QString menuPath() const {
        QDBusMessage question =
            QDBusMessage::createMethodCall(m_item, itemPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
        question.setArguments({itemInterface, u"Menu"_s});
        const auto answer = m_bus.call(question).arguments().value(0).value<QDBusVariant>();
        return answer.variant().value<QDBusObjectPath>().path();
    }
    QDBusMessage askMenu(const char *method, const QVariantList &arguments) const {
        QDBusMessage question = QDBusMessage::createMethodCall(m_item, menuPath(), u"com.canonical.dbusmenu"_s,
                                                               QString::fromLatin1(method));
        question.setArguments(arguments);
        return m_bus.call(question);
    }

    QDBusConnection m_bus;
    QString m_item;
    bool m_isShown = true;
    int m_timesAsked = 0;
};

} // namespace quillory::test
