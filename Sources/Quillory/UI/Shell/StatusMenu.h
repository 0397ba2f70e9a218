// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMenu>

#include <functional>

namespace quillory::ui {

/// The menu of the status item. The tray shows it by its own means, or has Qt show it.
class StatusMenu final : public QMenu {
  public:
    /// Adds an item. key: its shortcut together with Control; 0 for none.
    QAction *addItem(const QString &title, std::function<void()> action, Qt::Key key = Qt::Key(0));
    /// The same with a check mark.
    QAction *addToggle(const QString &title, std::function<void()> action);

  protected:
    void actionEvent(QActionEvent *event) override;
    /// An open menu has the keyboard, but Qt looks for shortcuts in windows only.
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace quillory::ui
