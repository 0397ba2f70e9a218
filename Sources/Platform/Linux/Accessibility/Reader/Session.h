// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Focus/FocusTracker.h"
#include "Platform/Linux/Accessibility/Page/PageMirror.h"

#include <atomic>
#include <mutex>

namespace platform::desktop::atspi {

/// What the reader's thread shows to all threads.
class Board {
  public:
    [[nodiscard]] Focus focus() const { return get(m_focus); }
    void setFocus(const Focus &focus) { set(m_focus, focus); }
    [[nodiscard]] MirroredPage page() const { return get(m_page); }
    void setPage(const MirroredPage &page) { set(m_page, page); }

    /// Whether the bus answers and accessibility is on for the session.
    std::atomic<bool> isTrusted = false;
    /// Whether the bus answers, so that accessibility can be switched on.
    std::atomic<bool> hasBus = false;

  private:
    template <class T> T get(const T &place) const {
        const std::scoped_lock lock(m_mutex);
        return place;
    }
    template <class T> void set(T &place, const T &value) {
        const std::scoped_lock lock(m_mutex);
        place = value;
    }

    mutable std::mutex m_mutex;
    Focus m_focus;
    MirroredPage m_page;
};

/// Everything that lives on the reader's thread: the two connections and what is known through them. Finds the
/// accessibility bus by way of the session bus, tries again about once a second while there is none (and has it started
/// at most once a minute), and starts anew when it is lost.
class Session {
  public:
    /// stop ends every wait. giveWay is called during long work, to do what cannot wait for its end.
    Session(std::string sessionBusAddress, qint32 ownPid, Board &board, const StopSignal &stop,
            std::function<void()> giveWay);

    /// Handles what has arrived and does what is due.
    void process();
    /// When process() must be called again, unless the connections have something to do before.
    [[nodiscard]] Clock::time_point nextWake() const;
    /// The open connections, to wait for their activity.
    [[nodiscard]] std::vector<sd_bus *> buses() const;

    /// All are null while there is no accessibility bus.
    [[nodiscard]] Connection *connection() { return m_bus.get(); }
    [[nodiscard]] FocusTracker *focus() { return m_focus.get(); }
    [[nodiscard]] PageMirror *mirror() { return m_mirror.get(); }
    [[nodiscard]] qint32 ownPid() const { return m_ownPid; }
    /// Switches accessibility on for the session.
    void enable();

  private:
    void connect();
    void connectSession(bool mayStart);
    void connectAccessibility(bool mayStart);
    void loseAccessibility();
    void readEnabled(bool mayStart);

    std::string m_sessionBusAddress;
    qint32 m_ownPid;
    Board &m_board;
    const StopSignal &m_stop;
    std::function<void()> m_giveWay;
    std::unique_ptr<Connection> m_session;
    std::unique_ptr<Connection> m_bus;
    std::unique_ptr<FocusTracker> m_focus;
    std::unique_ptr<PageMirror> m_mirror;
    Clock::time_point m_retryAt;
    /// When the session bus may be asked again to start the service.
    Clock::time_point m_startAt;
    bool m_isEnabled = false;
    bool m_mustReadEnabled = true;
};

} // namespace platform::desktop::atspi
