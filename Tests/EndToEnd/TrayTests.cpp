// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/Assistant.h"
#include "EndToEnd/Keyboard.h"
#include "RealDesktop/RealDesktop.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <gmock/gmock.h>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

const auto menuAtFirst =
    u"✓ Suggestions Enabled | Compare Two Models | - | Settings… | Check for Updates… | - | Quit Quillory"_s;

/// Waits long enough for a busy machine.
template <typename Condition> bool eventually(Condition condition) {
    return waitUntil(condition, 60'000);
}

const auto watcher = u"org.kde.StatusNotifierWatcher"_s;

/// A tray that speaks the StatusNotifierItem protocol, as a desktop's panel does, and reads the menu of the item that
/// registers with it.
class StatusNotifierHost final : private QDBusVirtualObject {
  public:
    StatusNotifierHost() : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"tray"_s)) {
        if (!m_bus.registerVirtualObject(u"/StatusNotifierWatcher"_s, this)) {
            throw std::runtime_error("the tray has no session bus");
        }
    }
    ~StatusNotifierHost() override { QDBusConnection::disconnectFromBus(u"tray"_s); }

    /// Takes the name under which items look for a tray.
    void appear() { m_bus.registerService(watcher); }
    /// Takes the name first, waits until an item asks whether there is a tray, and only then announces one.
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
    template <typename Condition> static bool await(Condition condition) {
        return eventually([&] {
            QCoreApplication::processEvents();
            return condition();
        });
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
    [[nodiscard]] std::vector<std::pair<int, QVariantMap>> menuItems() const {
        const QDBusMessage layout = askMenu("GetLayout", {0, -1, QStringList()});
        const auto root = layout.arguments().value(1).value<QDBusArgument>();
        int id = 0;
        QVariantMap properties;
        QVariantList entries;
        root.beginStructure();
        root >> id >> properties >> entries;
        root.endStructure();
        std::vector<std::pair<int, QVariantMap>> items(static_cast<std::size_t>(entries.size()));
        for (std::size_t i = 0; i < items.size(); ++i) {
            const auto entry = entries[static_cast<qsizetype>(i)].value<QDBusArgument>();
            entry.beginStructure();
            entry >> items[i].first >> items[i].second;
            entry.endStructure();
        }
        return items;
    }
    QDBusMessage askMenu(const char *method, const QVariantList &arguments) const {
        // Qt exports the menu of a status item here.
        QDBusMessage question = QDBusMessage::createMethodCall(m_item, u"/MenuBar"_s, u"com.canonical.dbusmenu"_s,
                                                               QString::fromLatin1(method));
        question.setArguments(arguments);
        return m_bus.call(question);
    }

    QDBusConnection m_bus;
    QString m_item;
    bool m_isShown = true;
    int m_timesAsked = 0;
};

/// The built program with a key in its environment.
ChildProcess started() {
    qputenv("OPENROUTER_API_KEY", "made-up-key");
    return ChildProcess({QUILLORY_PROGRAM});
}

QByteArray setting(const char *key) {
    return outputOf({QUILLORY_PROGRAM, "defaults", "read", key}).trimmed();
}

TEST(Tray, MenuIsReadAndChosenFromByTheDesktop) {
    ChildProcess program = started();
    StatusNotifierHost tray;
    sleepBriefly();
    ASSERT_TRUE(tray.appearInSteps()); // the panel may start after the program and piece by piece, and again
    ASSERT_TRUE(tray.hasItem());
    tray.vanish();
    tray.appear();
    ASSERT_TRUE(tray.hasItem());
    EXPECT_TRUE(eventually([&] { return tray.openedMenu() == menuAtFirst; })) << tray.openedMenu().toStdString();
    tray.choose(u"Suggestions Enabled"_s);
    tray.choose(u"Compare Two Models"_s);
    EXPECT_TRUE(eventually([] { return setting("enabled") == "false" && setting("compareMode") == "true"; }));
    EXPECT_TRUE(tray.openedMenu().startsWith(u"Suggestions Enabled | ✓ Compare Two Models"_s));
    tray.choose(u"Settings…"_s);
    ASSERT_TRUE(eventually([] { return keyboard::isAtWindow("Quillory"); }));
    for (const char *key : {"alt+e", "alt+t", "Down", "Down"}) {
        keyboard::tap(key);
    }
    EXPECT_TRUE(eventually([] { return setting("enabled") == "true" && setting("tone") == "Concise"; }));
    keyboard::tap("Escape");
    EXPECT_TRUE(eventually([] { return !keyboard::seesWindow("Quillory"); }));
    EXPECT_EQ(run({QUILLORY_PROGRAM}, Output::dropped), 0);
    EXPECT_TRUE(eventually([] { return keyboard::seesWindow("Quillory"); }))
        << "a second start shows the window of the first";
    RealDesktop::setAccessibilityEnabled(false);
    EXPECT_TRUE(eventually([&] { return tray.openedMenu().contains(u"Grant Accessibility Access…"_s); }));
    tray.choose(u"Quit Quillory"_s);
    EXPECT_TRUE(eventually([&] { return !program.isRunning(); }));
    EXPECT_EQ(program.end(), 0);
}

TEST(Tray, EmbedsTheIconWhereOnlyTheOldKindIs) {
    ChildProcess program = started();
    ChildProcess panel({"trayer", "--edge", "top", "--align", "left", "--widthtype", "request"}, Output::dropped);
    EXPECT_TRUE(eventually([&] {
        keyboard::click({12, 12}); // opens the menu, once there is something to click on
        keyboard::tap("ctrl+q");
        return !program.isRunning();
    }));
    EXPECT_EQ(program.end(), 0);
}

} // namespace
} // namespace quillory::test
