// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Shell/Windows.h"

#include "Platform/Workspace.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QShortcut>
#include <QTimer>
#include <QWidget>

namespace quillory::ui {

namespace {
constexpr std::chrono::milliseconds untilManaged{300};

void activateOwnWindows(platform::Workspace &workspace) {
    workspace.activate(static_cast<qint32>(QCoreApplication::applicationPid()));
}
} // namespace

void bringToFront(QWidget &window, platform::Workspace &workspace) {
    window.show();
    window.raise();
    window.activateWindow();
    activateOwnWindows(workspace);
    // A window manager may hold back a window that it does not take for the user's wish; a second request helps.
    QTimer::singleShot(untilManaged, &window, [&window, &workspace] {
        if (window.isVisible() && !window.isActiveWindow()) {
            activateOwnWindows(workspace);
        }
    });
}

void placeAtPointer(QWidget &window) {
    constexpr double mostOfScreen = 0.9;
    const QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    const QRect room = (screen != nullptr ? screen : QGuiApplication::primaryScreen())->availableGeometry();
    window.resize(window.size().boundedTo(room.size() * mostOfScreen));
    window.move(room.center() - window.rect().center());
}

void closeByKeys(QWidget &window) {
    for (const QKeySequence &keys : {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W)}) {
        QObject::connect(new QShortcut(keys, &window), &QShortcut::activated, &window, &QWidget::close);
    }
}

} // namespace quillory::ui
