// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Shell/StatusMenu.h"

#include <QActionEvent>
#include <QKeyEvent>

namespace quillory::ui {

QAction *StatusMenu::addItem(const QString &title, std::function<void()> action, Qt::Key key) {
    QAction *item = addAction(title);
    // On some desktops Qt would move an item by what its title sounds like.
    item->setMenuRole(QAction::NoRole);
    if (key != Qt::Key(0)) {
        item->setShortcut(QKeyCombination(Qt::CTRL, key));
        item->setShortcutVisibleInContextMenu(true);
    }
    connect(item, &QAction::triggered, this, std::move(action));
    return item;
}

QAction *StatusMenu::addToggle(const QString &title, std::function<void()> action) {
    QAction *item = addItem(title, std::move(action));
    item->setCheckable(true);
    return item;
}

void StatusMenu::actionEvent(QActionEvent *event) {
    QMenu::actionEvent(event);
    // With a large font Qt's style reserves a little less than it draws, and would shorten a title.
    setMinimumWidth(0);
    setMinimumWidth(sizeHint().width() + 2 * fontMetrics().averageCharWidth());
}

void StatusMenu::keyPressEvent(QKeyEvent *event) {
    for (QAction *item : actions()) {
        if (!item->shortcut().isEmpty() && item->shortcut() == QKeySequence(event->keyCombination())) {
            hide();
            item->trigger();
            return;
        }
    }
    QMenu::keyPressEvent(event);
}

} // namespace quillory::ui
