// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/X11/X11Connection.h"

#include <QTimer>

#include <optional>

namespace platform::desktop {

/// One form of a selection's content, with what the X protocol says about it.
struct X11SelectionValue {
    xcb_atom_t target = XCB_NONE;
    xcb_atom_t type = XCB_NONE;
    std::uint8_t format = 8;
    QByteArray data;
};

/// Reads a selection with all its types from the program that owns it, once, without waiting.
class X11SelectionReader {
  public:
    /// What was read in time, in the order in which the owner offers it; absent when there is an owner but it delivered
    /// nothing, or nothing small enough.
    using Done = std::function<void(std::optional<std::vector<X11SelectionValue>>)>;

    /// Starts reading. The handler is called once, from the event loop, unless the reader is destroyed before.
    X11SelectionReader(X11Connection &connection, xcb_atom_t selection, Done done);
    ~X11SelectionReader();
    X11SelectionReader(const X11SelectionReader &) = delete;
    X11SelectionReader &operator=(const X11SelectionReader &) = delete;

    /// To be called when the selection changes hands: reads the new owner's content, or settles for what is complete if
    /// there is no owner.
    void ownerChanged(xcb_window_t owner);

  private:
    enum class Stage { asked, incremental, complete, absent, tooLarge };
    struct Transfer {
        X11SelectionValue value;
        Stage stage = Stage::asked;
        /// How much of the property's present content has been read, in bytes.
        std::uint32_t offset = 0;
    };

    void start();
    void askFor(xcb_atom_t target);
    void handle(const xcb_generic_event_t &event);
    void handleNotify(const xcb_selection_notify_event_t &notify);
    void handleTargets(xcb_atom_t property);
    void askForAll(const std::vector<xcb_atom_t> &targets);
    [[nodiscard]] Transfer *transfer(xcb_atom_t target);
    void fetch(Transfer &transfer);
    [[nodiscard]] bool receive(Transfer &transfer, const xcb_get_property_reply_t &answer);
    void settle(Transfer &transfer, Stage stage);
    void handleDeadline();
    /// isAnswered: whether the owner has answered everything.
    void finish(bool isAnswered);

    X11Connection &m_connection;
    xcb_atom_t m_selection;
    Done m_done;
    xcb_window_t m_window = XCB_NONE;
    std::vector<Transfer> m_transfers;
    qsizetype m_total = 0;
    int m_attempts = 0;
    bool m_isExtended = false;
    QTimer m_stall;
    QTimer m_deadline;
    RegistrationHandle m_events;
};

} // namespace platform::desktop
