// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Shell/BringToFront.h"

#include "Platform/Platform.h"

#include <QPointer>
#include <QWidget>

namespace quillory::ui {

namespace {
constexpr std::chrono::milliseconds untilManaged{300};

void activateOwnWindows() {
    const auto &services = platform::current();
    services.workspace.activate(services.process.identifier());
}
} // namespace

void bringToFront(QWidget &window) {
    window.show();
    window.raise();
    window.activateWindow();
    activateOwnWindows();
    // A window manager may take a new window for an intruder, which a second request on the user's behalf mends.
    platform::current().mainQueue.postAfter(untilManaged, [shown = QPointer(&window)] {
        if (shown != nullptr && shown->isVisible() && !shown->isActiveWindow()) {
            activateOwnWindows();
        }
    });
}

} // namespace quillory::ui
