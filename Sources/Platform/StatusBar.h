// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/MainQueue.h"

#include <QString>

#include <functional>

namespace platform {

/// The place of the desktop where programs show an icon with a menu. Main thread only.
class StatusBar {
  public:
    virtual ~StatusBar() = default;
    /// Whether the desktop has such a place now. Never waits: a moment after the start the answer may still be no.
    [[nodiscard]] virtual bool isAvailable() const = 0;
    /// Calls back whenever the answer changes, until the handle is destroyed. One listener at a time.
    [[nodiscard]] virtual RegistrationHandle onChange(std::function<void()> changed) = 0;
    /// Tells the user something where there is no icon, without taking the focus and without waiting. Where the desktop
    /// has no such messages either, nothing is seen.
    virtual void tell(const QString &title, const QString &text) = 0;
};

} // namespace platform
