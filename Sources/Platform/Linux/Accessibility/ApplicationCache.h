// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Linux/Accessibility/Connection.h"
#include "Platform/Linux/Accessibility/Protocol.h"

#include <QString>

namespace platform::desktop::atspi {

/// One element as an application lists it. The values are those of the moment of the answer, but the list may lack
/// elements that the application has not got round to.
struct ListedElement {
    ElementRef ref;
    ElementRef parent;
    std::size_t index = 0;
    std::size_t childCount = 0;
    Role role = Role::unknown;
    States states;
    QString name;
};

/// All elements that an application lists, in one call. Empty when it lists none, does not answer in time, or answers
/// in a form other than today's (older toolkits do).
[[nodiscard]] std::vector<ListedElement> listApplication(Connection &connection, const std::string &bus,
                                                         Deadline deadline);

} // namespace platform::desktop::atspi
