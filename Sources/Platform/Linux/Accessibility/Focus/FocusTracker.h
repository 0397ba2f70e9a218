// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Focus/Ancestry.h"
#include "Platform/Linux/Accessibility/Focus/FocusSearch.h"

#include <memory>

namespace platform::desktop::atspi {

/// What has the focus, and what was last read of it. The shared values are never changed, so threads may share them.
struct Focus {
    std::optional<Handle> element;
    std::shared_ptr<const ElementReading> reading;
    std::shared_ptr<const Ancestry> ancestry;
    /// When it was last asked and answered that it has the focus.
    Clock::time_point confirmedAt;
};

/// Follows the keyboard focus of the desktop through the applications' events, and looks for it where no event came.
/// An element is only given out once its surroundings are known, so that questions about it need not wait.
class FocusTracker {
  public:
    using Publish = std::function<void(const Focus &)>;

    /// ownPid: our own process, whose elements are never asked anything, because its main thread would have to answer.
    FocusTracker(Connection &connection, qint32 ownPid, Publish publish);

    /// Acts on the events that came, and looks for the focus when that is due.
    void settle();
    /// When settle() must be called again.
    [[nodiscard]] Clock::time_point nextLook() const;
    /// Reads the focused element anew and finds out whether it still has the focus.
    const Focus &refresh(TextWanted wanted);
    /// The chain above the focused element, not older than a second. Null if the element is not the focused one.
    std::shared_ptr<const Ancestry> ancestryOf(const ElementRef &ref);
    [[nodiscard]] const Focus &focus() const { return m_focus; }
    /// The window that was last seen active in an application; a null reference if none.
    [[nodiscard]] ElementRef lastWindowOf(const std::string &bus) const;

  private:
    void registerForEvents();
    void sendRegistrations();
    void onStateChanged(sd_bus_message *message);
    void onWindow(sd_bus_message *message);
    void forgetVanished();
    void noteActivation(const ElementRef &window);

    /// An element that is said to have the focus, and how often reading its surroundings was tried.
    struct Candidate {
        ElementRef ref;
        int attempts = 0;
        Clock::time_point due;
    };
    [[nodiscard]] bool isReady(const Candidate &candidate) const;
    void adopt(const ElementRef &ref, int attempts = 0);
    void adoptOwn(const Handle &element);
    void adoptWithin(std::shared_ptr<const Ancestry> ancestry, int attempts);
    void adoptLater(const ElementRef &ref, int attempts);
    Climb::Outcome climbFrom(const Handle &element);
    [[nodiscard]] bool isWindowActive(const ElementRef &window, const std::optional<States> &states) const;
    [[nodiscard]] bool hasFocus(const ElementReading &reading, const ElementRef &window) const;
    void judge(const ElementReading &reading, const ElementRef &window);
    void drop();
    void publish() const { m_publish(m_focus); }

    void look();
    Clock::duration lookInActiveWindow();
    void lookSoon();

    Connection &m_connection;
    qint32 m_ownPid;
    Publish m_publish;
    FocusSearch m_search;
    Focus m_focus;
    std::unique_ptr<FieldReader> m_reader;
    Candidate m_candidate;
    std::optional<Climb> m_climb;
    /// The window that was activated last, as its application said.
    ElementRef m_window;
    std::map<std::string, ElementRef, std::less<>> m_windows;
    std::vector<std::string> m_vanished;
    bool m_mustConfirm = false;
    std::optional<Clock::time_point> m_lostSince;
    Clock::time_point m_lookAt;
    std::chrono::milliseconds m_lookPause{};
};

} // namespace platform::desktop::atspi
