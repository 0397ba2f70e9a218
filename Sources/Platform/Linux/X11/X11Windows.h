// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Applications/DesktopWindows.h"
#include "Platform/Linux/X11/X11Connection.h"

namespace platform::desktop {

/// Windows as an EWMH window manager knows them.
class X11Windows final : public DesktopWindows {
  public:
    explicit X11Windows(X11Connection &connection) : m_connection(connection) {}

    [[nodiscard]] std::optional<ActiveWindow> active() override;
    void activate(qint32 pid) override;

  private:
    [[nodiscard]] std::vector<xcb_window_t> windowsOf(qint32 pid);

    X11Connection &m_connection;
    ActiveWindow m_last;
};

} // namespace platform::desktop
