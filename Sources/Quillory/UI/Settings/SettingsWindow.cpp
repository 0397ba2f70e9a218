// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Settings/SettingsWindow.h"

#include "Quillory/UI/AccessibleViews.h"
#include "Quillory/UI/Form/FormStyle.h"
#include "Quillory/UI/Settings/SettingsView.h"
#include "Quillory/UI/Shell/BringToFront.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QVBoxLayout>

namespace quillory::ui {

SettingsWindow::SettingsWindow(const SettingsServices &services)
    : QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      m_workspace(services.workspace) {
    installAccessibleViews();
    FormStyle::install();
    setWindowTitle(QStringLiteral("Quillory"));
    auto *const content = new QVBoxLayout(this);
    content->setContentsMargins(0, 0, 0, 0);
    content->setSizeConstraint(QLayout::SetFixedSize);
    content->addWidget(new SettingsView(services));
    adjustSize();
    const QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    const QRect room = (screen != nullptr ? screen : QGuiApplication::primaryScreen())->availableGeometry();
    move(room.center() - rect().center());
}

void SettingsWindow::makeKeyAndOrderFront() {
    bringToFront(*this, m_workspace);
}

void SettingsWindow::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Escape || event->keyCombination() == QKeyCombination(Qt::CTRL, Qt::Key_W)) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

} // namespace quillory::ui
