// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Shell/BringToFront.h"

#include "Platform/Workspace.h"

#include <QCoreApplication>
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

} // namespace quillory::ui
