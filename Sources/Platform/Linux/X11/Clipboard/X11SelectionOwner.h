// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/X11/Clipboard/X11SelectionReader.h"

#include <QElapsedTimer>

namespace platform::desktop {

/// Owns a selection and serves its content to all who ask, large content in portions and to several at once.
class X11SelectionOwner {
  public:
    X11SelectionOwner(X11Connection &connection, xcb_atom_t selection);

    /// Claims the selection; false when another program got it.
    [[nodiscard]] bool claim();
    /// Serves this content, once the selection is claimed.
    void hold(std::vector<X11SelectionValue> values);
    /// Stops serving content, without giving the selection up.
    void forget() { m_values.clear(); }
    /// To be called when another program owns the selection.
    void lose();
    /// Leaves the selection without an owner, unless somebody took it after this server time.
    void giveUp(xcb_timestamp_t time);
    [[nodiscard]] bool isOwner() const { return m_isOwner; }
    [[nodiscard]] const std::vector<X11SelectionValue> &values() const { return m_values; }
    /// How often some of the content was given to another program.
    [[nodiscard]] qint64 timesServed() const { return m_timesServed; }
    /// Asks the desktop's clipboard manager, if there is one, to keep the content, and waits for it at most this long.
    void handOver(std::chrono::milliseconds longestWait);

  private:
    /// Content on its way in portions.
    struct Sending {
        xcb_window_t requestor = XCB_NONE;
        xcb_atom_t property = XCB_NONE;
        X11SelectionValue value;
        qsizetype offset = 0;
        RegistrationHandle listening;
        QElapsedTimer sinceProgress;
    };

    void handle(const xcb_generic_event_t &event);
    void serve(const xcb_selection_request_event_t &request);
    void serveMultiple(const xcb_selection_request_event_t &request);
    void answer(const xcb_selection_request_event_t &request, xcb_atom_t property);
    [[nodiscard]] bool convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    [[nodiscard]] bool send(xcb_window_t requestor, xcb_atom_t property, const X11SelectionValue &value);
    void sendNext(xcb_window_t requestor, xcb_atom_t property);
    void dropStalled();
    void put(xcb_window_t requestor, xcb_atom_t property, const X11SelectionValue &value, const char *data,
             qsizetype size);

    X11Connection &m_connection;
    xcb_atom_t m_selection;
    std::vector<X11SelectionValue> m_values;
    std::vector<Sending> m_sending;
    bool m_isOwner = false;
    qint64 m_timesServed = 0;
    xcb_timestamp_t m_since = XCB_CURRENT_TIME;
    QTimer m_reaper;
    RegistrationHandle m_events;
};

} // namespace platform::desktop
