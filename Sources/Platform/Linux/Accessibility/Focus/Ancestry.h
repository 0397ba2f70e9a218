// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Questions.h"
#include "Platform/Linux/Accessibility/Bus/Roles.h"

#include <QString>

namespace platform::desktop::atspi {

/// What an element says of its parent. A removed element has none, though in Firefox it may go on naming one.
struct ParentAnswer {
    bool isAnswered = false;
    std::optional<ElementRef> parent;
};
[[nodiscard]] ParentAnswer askParent(Connection &connection, const ElementRef &ref, Deadline deadline);

/// The elements above an element, from its parent up to its application.
struct Ancestry {
    struct Level {
        Handle element;
        Kind kind;
        QString name;
        /// The address of a page.
        std::optional<QString> url;
    };
    Handle element;
    Clock::time_point takenAt;
    std::vector<Level> levels;

    /// Where an element is in the chain; null if it is not.
    [[nodiscard]] const Level *find(const ElementRef &ref) const;
    /// The window: the last level below the application. Null where there is none.
    [[nodiscard]] const Level *window() const;
};

/// A climb from an element to its application, one round trip a level. A slow application may take longer than anybody
/// waits in one go, so a climb that ran out of time is taken up again where it was left.
class Climb {
  public:
    enum class Outcome { arrived, brokenOff, outOfTime };

    explicit Climb(Handle element) : m_ancestry{std::move(element), Clock::now(), {}} {}
    Outcome proceed(Connection &connection, Deadline deadline);
    /// What has been climbed so far.
    [[nodiscard]] const Ancestry &ancestry() const { return m_ancestry; }

  private:
    Outcome climbLevel(Connection &connection, Deadline deadline);
    [[nodiscard]] bool isKnown(const ElementRef &ref) const;

    Ancestry m_ancestry;
    bool m_hasBegun = false;
    std::optional<ElementRef> m_next;
};

/// A whole climb. Absent when it broke off or took too long.
[[nodiscard]] std::optional<Ancestry> readAncestry(Connection &connection, const Handle &element, Deadline deadline);
/// Asks a known chain whether it still holds, in one round trip. False when it must be climbed anew.
[[nodiscard]] bool refreshAncestry(Connection &connection, Ancestry &ancestry, Deadline deadline);

} // namespace platform::desktop::atspi
