// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/MainQueue.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <xcb/xcb.h>

#include <cstdlib>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <vector>

class QSocketNotifier;

namespace platform::desktop {

struct FreeDeleter {
    void operator()(void *memory) const { std::free(memory); }
};
/// An answer or event of the X server, allocated by the library.
template <typename T> using X11Reply = std::unique_ptr<T, FreeDeleter>;
using X11Event = X11Reply<xcb_generic_event_t>;

/// The program's own connection to the X server, beside Qt's: grabs and selections belong to a connection, and on this
/// one nobody else takes events away. Main thread only.
class X11Connection {
  public:
    using EventHandler = std::function<void(const xcb_generic_event_t &)>;

    /// Connects to a display, by default the one in DISPLAY. Null when it cannot be reached. Needs no application
    /// object yet.
    [[nodiscard]] static std::unique_ptr<X11Connection> open(const QByteArray &display = {});
    ~X11Connection();
    X11Connection(const X11Connection &) = delete;
    X11Connection &operator=(const X11Connection &) = delete;

    /// Starts handing out events from the event loop; the application object must exist. If the server goes away later,
    /// the application is asked to end with status 1.
    void watch();

    [[nodiscard]] xcb_connection_t *get() const { return m_connection; }
    [[nodiscard]] const xcb_screen_t &screen() const { return *m_screen; }
    /// The name of a selection that each screen has one of: the prefix and the number of the screen, as in DISPLAY.
    [[nodiscard]] QByteArray ofScreen(const char *prefix) const { return prefix + QByteArray::number(m_screenNumber); }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    /// A window of our own that is never shown.
    [[nodiscard]] xcb_window_t window() const { return m_window; }
    [[nodiscard]] bool isBroken() const { return xcb_connection_has_error(m_connection) != 0; }

    /// The atom of a name, asked for once.
    [[nodiscard]] xcb_atom_t atom(const QByteArray &name);
    /// The names of atoms, in one round trip; empty for an atom that does not exist.
    [[nodiscard]] std::vector<QString> atomNames(const std::vector<xcb_atom_t> &atoms);
    /// Whether the server offers an extension.
    [[nodiscard]] bool has(xcb_extension_t *extension) const;
    /// The number of an extension's first event; 0 when the server lacks the extension.
    [[nodiscard]] std::uint8_t firstEvent(xcb_extension_t *extension) const;

    /// Calls the handler with every event until the handle is destroyed.
    [[nodiscard]] RegistrationHandle onEvent(EventHandler handler);
    /// Has the server send these events of a window until the handle is destroyed. The server keeps one mask per window
    /// and connection, so a mask that is set in any other way would undo this one.
    [[nodiscard]] RegistrationHandle selectEvents(xcb_window_t window, std::uint32_t mask);
    /// Waits for the X server's answer to a request. Null on an error. Events that arrive meanwhile are kept.
    template <typename Answer, typename Cookie>
    [[nodiscard]] X11Reply<Answer> reply(Answer *(*read)(xcb_connection_t *, Cookie, xcb_generic_error_t **),
                                         Cookie cookie) const {
        xcb_generic_error_t *error = nullptr;
        X11Reply<Answer> answer(read(m_connection, cookie, &error));
        std::free(error);
        return answer;
    }
    /// All 32-bit values of a window's property; empty when it is absent or of another format.
    [[nodiscard]] std::vector<std::uint32_t> values(xcb_window_t window, const QByteArray &property) {
        return values(askValues(window, atom(property)));
    }
    /// The same in two steps, so that several questions can be under way at once.
    [[nodiscard]] std::vector<std::uint32_t> values(xcb_get_property_cookie_t cookie) const;
    [[nodiscard]] xcb_get_property_cookie_t askValues(xcb_window_t window, xcb_atom_t property) const;

    /// The window that owns a selection; XCB_NONE when nobody does.
    [[nodiscard]] xcb_window_t ownerOf(xcb_atom_t selection) const;

    void flush() { xcb_flush(m_connection); }
    /// Waits until the server has carried out every request so far.
    void sync() const;
    /// The server's current time, for requests that must not be mistaken for older ones.
    [[nodiscard]] xcb_timestamp_t serverTime();
    /// Removes and returns the events that match the predicate, of those that have arrived and were not handed out yet.
    [[nodiscard]] std::vector<X11Event> takeEvents(const std::function<bool(const xcb_generic_event_t &)> &predicate);
    /// Hands out the events that have arrived.
    void dispatch();
    /// Waits for new events from the server, at most this long, and hands them out.
    void dispatchWithin(int milliseconds);

  private:
    X11Connection(xcb_connection_t *connection, int screenNumber);
    void sendEventMask(xcb_window_t window);
    void readQueued();
    void handOut();
    void lose();

    xcb_connection_t *m_connection;
    int m_screenNumber;
    const xcb_screen_t *m_screen = nullptr;
    xcb_window_t m_window = XCB_NONE;
    xcb_atom_t m_timeProperty = XCB_NONE;
    std::map<QByteArray, xcb_atom_t> m_atoms;
    std::map<xcb_atom_t, QString> m_atomNames;
    std::multimap<xcb_window_t, std::uint32_t> m_eventMasks;
    std::deque<X11Event> m_events;
    std::vector<std::shared_ptr<EventHandler>> m_handlers;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QObject m_context;
};

/// The type of an event, without the bit that marks events sent by another client.
[[nodiscard]] inline int eventType(const xcb_generic_event_t &event) {
    return event.response_type & ~0x80;
}

template <typename T> [[nodiscard]] const T &eventAs(const xcb_generic_event_t &event) {
    return reinterpret_cast<const T &>(event);
}

} // namespace platform::desktop
