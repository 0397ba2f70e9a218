// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/QtConnection.h"

#include <QGuiApplication>

namespace platform::desktop {

xcb_connection_t *qtConnection() {
    const auto *native = qGuiApp != nullptr ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return native != nullptr ? native->connection() : nullptr;
}

} // namespace platform::desktop
