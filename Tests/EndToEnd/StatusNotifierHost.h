// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QVariant>

#include <functional>
#include <vector>

namespace quillory::test {

/// A desktop's tray that speaks the StatusNotifierItem protocol, as a panel does, and reads the menu of the item that
/// registers with it.
class StatusNotifierHost final : private QDBusVirtualObject {
  public:
    StatusNotifierHost();
    ~StatusNotifierHost() override;

    /// Takes or gives up the name under which items look for the tray.
    void appear();
    /// Takes the name with no tray behind it yet, waits until somebody asks for one, and says that it has come.
    bool appearInSteps();
    void vanish();
    /// Waits until an item has registered since the tray appeared.
    bool hasItem();
    [[nodiscard]] QVariant property(const char *name) const;
    /// Opens the menu: what can be seen of it, with its check marks and keys, in its order.
    QString openedMenu();
    /// Chooses an item of it by its title.
    void choose(const QString &title);

  private:
    struct MenuItem {
        int id = 0;
        QVariantMap properties;
    };
    static bool await(const std::function<bool()> &condition);
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;
    [[nodiscard]] QString introspect(const QString &path) const override;
    [[nodiscard]] std::vector<MenuItem> menuItems() const;
    QDBusMessage askMenu(const char *method, const QVariantList &arguments) const;

    QDBusConnection m_bus;
    QString m_item;
    bool m_isShown = true;
    int m_timesAsked = 0;
};

} // namespace quillory::test
