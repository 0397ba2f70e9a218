// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/X11/X11Connection.h"

#include <xcb/xfixes.h>

namespace platform::desktop {

/// Follows who owns a selection: the clipboard, or one of those that trays and compositors own to show that they run.
/// Without the XFixes extension the owner can only be asked for; no change is reported. Main thread only.
class X11SelectionWatch {
  public:
    using Change = xcb_xfixes_selection_notify_event_t;
    using Handler = std::function<void(const Change &)>;

    /// Calls the handler from the event loop with every change of the owner.
    X11SelectionWatch(X11Connection &connection, const QByteArray &selection, Handler changed);

    [[nodiscard]] xcb_atom_t selection() const { return m_selection; }
    /// Whether somebody owns it now. Waits for the X server.
    [[nodiscard]] bool isOwned() const { return m_connection.ownerOf(m_selection) != XCB_NONE; }
    /// Calls the handler at once for changes that have arrived and were not handed out yet, ahead of all other events.
    void takeChanges();

  private:
    [[nodiscard]] bool isChange(const xcb_generic_event_t &event) const;

    X11Connection &m_connection;
    xcb_atom_t m_selection;
    int m_eventType = -1;
    Handler m_changed;
    RegistrationHandle m_events;
};

} // namespace platform::desktop
