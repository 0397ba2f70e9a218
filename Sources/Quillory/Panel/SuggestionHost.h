// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Geometry.h"
#include "Quillory/Panel/SuggestionCardData.h"

#include <functional>
#include <memory>

class QObject;

namespace quillory {

/// The view that draws a stack of suggestion cards. Main thread only.
class SuggestionHost {
  public:
    virtual ~SuggestionHost() = default;
    /// Shows these cards at exactly this width in points, height from the content, and returns the resulting size.
    /// onAccept gets the index of the card whose button was clicked.
    virtual platform::Size setRootView(const SuggestionCards &cards, double width, std::function<void(int)> onAccept,
                                       std::function<void()> onDismiss) = 0;
    /// The content for a panel window.
    [[nodiscard]] virtual QObject *view() = 0;
};

/// Makes the view of the cards.
using MakeSuggestionHost = std::function<std::unique_ptr<SuggestionHost>()>;

} // namespace quillory
