// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Questions.h"
#include "Platform/Linux/Accessibility/Page/PageTree.h"

/// What a bulk read asks of single elements. What is not answered in time stays unknown.
namespace platform::desktop::atspi {

/// Asks about the roles, the children and, where texts are folded, the texts of elements.
void askElements(const Asking &asking, const PageRequest &request, PageTree &tree,
                 const std::vector<ElementRef> &unknown);
/// Asks for the static texts of a walk that are not known yet, and for what the names of some roles depend on.
void askTexts(const Asking &asking, PageTree &tree, const std::vector<PageWalk::Step> &steps);

} // namespace platform::desktop::atspi
