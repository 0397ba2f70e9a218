// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Linux/Accessibility/Questions.h"
#include "Platform/Linux/Accessibility/Roles.h"

#include <QString>

namespace platform::desktop::atspi {

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

/// Climbs from an element to its application, one round trip a level. Absent when the climb broke off.
[[nodiscard]] std::optional<Ancestry> readAncestry(Connection &connection, const Handle &element, Deadline deadline);
/// Asks a known chain whether it still holds, in one round trip. False when it must be climbed anew.
[[nodiscard]] bool refreshAncestry(Connection &connection, Ancestry &ancestry, Deadline deadline);

} // namespace platform::desktop::atspi
