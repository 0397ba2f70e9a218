// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/X11/X11Connection.h"

namespace platform::desktop {

/// The one instance of the program on a display, or of its set-up. It owns a selection, which the server takes away
/// with its connection: a crash leaves no lock behind, and neither a session bus (which a user's displays may share, or
/// lack) nor a folder is needed. What the instance grabs and shows belongs to the display as well, so one on each is
/// right.
class X11Instance {
  public:
    /// Of what there is to be one.
    enum class Kind { program, setup };
    /// Becomes the display's instance; null when another one is.
    [[nodiscard]] static std::unique_ptr<X11Instance> become(X11Connection &connection, Kind kind = Kind::program);
    /// Whether the display has one.
    [[nodiscard]] static bool isThere(X11Connection &connection, Kind kind = Kind::program);
    /// Has the display's instance come forward, as the user wants who started the program again; false when none
    /// answers in time.
    [[nodiscard]] static bool summon(X11Connection &connection, std::chrono::milliseconds longestWait,
                                     Kind kind = Kind::program);

    /// What to do when this one is summoned. Until then a summons waits, as long as its sender does.
    void onSummons(std::function<void()> handler);

  private:
    explicit X11Instance(X11Connection &connection) : m_connection(connection) {}
    void answer(const xcb_client_message_event_t &summons);

    X11Connection &m_connection;
    RegistrationHandle m_events;
};

} // namespace platform::desktop
