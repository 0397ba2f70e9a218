// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Shell/StatusItem.h"

#include "Quillory/UI/Look.h"
#include "Quillory/UI/Symbols.h"

#include <QCursor>
#include <QMenu>
#include <QPainter>
#include <QSystemTrayIcon>

namespace quillory::ui {

QIcon programIcon() {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48, 64}) {
        QPixmap picture(side, side);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        drawSymbol(painter, picture.rect(), symbolName::wand, sharedGradient(picture.rect()));
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

StatusItem::StatusItem(QMenu &menu, platform::StatusBar &statusBar) : m_menu(menu), m_statusBar(statusBar) {
    m_listening = m_statusBar.onChange([this] { showWhenPossible(); });
    showWhenPossible();
}

StatusItem::~StatusItem() = default;

// An icon that was shown once follows its tray by itself, also when that goes and comes back.
void StatusItem::showWhenPossible() {
    if (m_icon != nullptr || !m_statusBar.isAvailable()) {
        return;
    }
    m_icon = std::make_unique<QSystemTrayIcon>(programIcon());
    m_icon->setToolTip(QStringLiteral("Quillory"));
    m_icon->setContextMenu(&m_menu);
    QObject::connect(m_icon.get(), &QSystemTrayIcon::activated, &m_menu, [this](QSystemTrayIcon::ActivationReason how) {
        if (how == QSystemTrayIcon::Trigger) {
            m_menu.popup(QCursor::pos());
        }
    });
    m_icon->show();
}

} // namespace quillory::ui
