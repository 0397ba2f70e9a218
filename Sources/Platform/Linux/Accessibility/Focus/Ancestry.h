// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Questions.h"
#include "Platform/Linux/Accessibility/Focus/FieldReader.h"

namespace platform::desktop::atspi {

/// The elements above an element, from its parent up to its application. Kind, name and, of pages, address are read of
/// each.
struct Ancestry {
    Handle element;
    Clock::time_point takenAt;
    std::vector<ElementReading> levels;

    /// Where an element is in the chain; null if it is not.
    [[nodiscard]] const ElementReading *find(const ElementRef &ref) const;
    /// What is above an element of the chain, or above the one that it begins with; null at the top.
    [[nodiscard]] const ElementReading *above(const ElementRef &ref) const;
    /// The window: the last level below the application. Null where there is none.
    [[nodiscard]] const ElementReading *window() const;
};

/// A climb from an element to its application, one round trip a level. With a slow application it may take longer than
/// anybody waits in one go, so a climb that ran out of time goes on later where it stopped.
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

/// Asks for the address of a page.
void askAddress(Questions &questions, ElementReading &page);
/// A whole climb. Absent when it broke off or took too long.
[[nodiscard]] std::optional<Ancestry> readAncestry(Connection &connection, const Handle &element, Deadline deadline);
/// Asks a known chain whether it still holds, in one round trip. False when it must be climbed anew.
[[nodiscard]] bool refreshAncestry(Connection &connection, Ancestry &ancestry, Deadline deadline);

} // namespace platform::desktop::atspi
