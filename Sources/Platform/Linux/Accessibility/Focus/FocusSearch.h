// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Connection.h"

namespace platform::desktop::atspi {

/// Finds the active window and its focused element by asking, where no event came: for what had the focus before this
/// program started, for focus that a script set, for events that were lost.
class FocusSearch {
  public:
    /// ownPid: the process whose windows are never asked anything.
    FocusSearch(Connection &connection, qint32 ownPid) : m_connection(connection), m_ownPid(ownPid) {}

    [[nodiscard]] std::optional<ElementRef> activeWindow();
    /// The innermost element with the focus.
    [[nodiscard]] std::optional<ElementRef> focusedBelow(const ElementRef &window);
    /// Makes Chromium build a window's tree: until somebody asks the frame for its attributes it shows two elements.
    void wake(const ElementRef &window);
    /// An application has left the bus.
    void forget(const std::string &bus);

  private:
    [[nodiscard]] std::vector<ElementRef> otherWindows();
    [[nodiscard]] std::optional<ElementRef> searchBelow(const ElementRef &window, Deadline deadline);

    Connection &m_connection;
    qint32 m_ownPid;
    std::set<ElementRef> m_woken;
};

/// The first of these windows that says it is active.
[[nodiscard]] std::optional<ElementRef> activeAmong(Connection &connection, const std::vector<ElementRef> &windows,
                                                    Deadline deadline);

} // namespace platform::desktop::atspi
