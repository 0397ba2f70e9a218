// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/UI/Settings/SettingsWindow.h"

#include "Platform/Platform.h"
#include "Quillory/UI/AccessibleViews.h"
#include "Quillory/UI/Settings/SettingsView.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QScreen>
#include <QVBoxLayout>

namespace quillory::ui {

namespace {
constexpr std::chrono::milliseconds untilManaged{300};
}

SettingsWindow::SettingsWindow()
    : QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint) {
    installAccessibleViews();
    setWindowTitle(QStringLiteral("Quillory"));
    auto *const content = new QVBoxLayout(this);
    content->setContentsMargins(0, 0, 0, 0);
    content->setSizeConstraint(QLayout::SetFixedSize);
    content->addWidget(new SettingsView);
    adjustSize();
    const QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    const QRect room = (screen != nullptr ? screen : QGuiApplication::primaryScreen())->availableGeometry();
    move(room.center() - rect().center());
}

void SettingsWindow::makeKeyAndOrderFront() {
    show();
    raise();
    activateWindow();
    activate();
    // A window manager may take a new window for an intruder, which a second request on the user's behalf mends.
    platform::current().mainQueue.postAfter(untilManaged, [window = QPointer(this)] {
        if (window != nullptr && window->isVisible() && !window->isActiveWindow()) {
            activate();
        }
    });
}

void SettingsWindow::activate() {
    const auto &services = platform::current();
    services.workspace.activate(services.process.identifier());
}

void SettingsWindow::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Escape || event->keyCombination() == QKeyCombination(Qt::CTRL, Qt::Key_W)) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

} // namespace quillory::ui
