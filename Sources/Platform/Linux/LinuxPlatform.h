// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Platform.h"

#include <functional>
#include <memory>

namespace platform::desktop {

class X11Connection;

/// The services of a Linux desktop with an X server. Made after the QApplication and destroyed before it.
class LinuxPlatform {
  public:
    /// isTrustOfferedElsewhere: whether another window already offers to switch accessibility on.
    explicit LinuxPlatform(
        std::unique_ptr<X11Connection> connection,
        std::function<bool()> isTrustOfferedElsewhere = [] { return false; });
    ~LinuxPlatform();
    LinuxPlatform(const LinuxPlatform &) = delete;
    LinuxPlatform &operator=(const LinuxPlatform &) = delete;

    [[nodiscard]] const Platform &services() const;
    [[nodiscard]] const UpdateServices &updateServices() const;

  private:
    struct Private;
    std::unique_ptr<Private> m_private;
};

} // namespace platform::desktop
