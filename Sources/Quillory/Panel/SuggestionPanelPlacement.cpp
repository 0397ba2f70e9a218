// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Panel/SuggestionPanelController.h"

#include <algorithm>

namespace quillory {

namespace {

using platform::Point;
using platform::Rect;
using platform::Screen;

constexpr double gapToField = 10;

Rect visibleFrameAround(Point point, const std::vector<Screen> &screens, const std::optional<Screen> &mainScreen) {
    const auto found = std::find_if(screens.begin(), screens.end(),
                                    [&](const Screen &screen) { return screen.frame.contains(point); });
    if (found != screens.end()) {
        return found->visibleFrame;
    }
    return mainScreen ? mainScreen->visibleFrame : Rect{};
}

} // namespace

Point panelOrigin(const Rect &field, platform::Size panel, const std::vector<Screen> &screens,
                  const std::optional<Screen> &mainScreen) {
    const Rect visible = visibleFrameAround({field.midX(), field.midY()}, screens, mainScreen);
    double y = field.maxY() + gapToField;
    if (visible.maxY() - panelScreenMargin < y + panel.height) {
        y = field.minY() - gapToField - panel.height;
    }
    const double left = visible.minX() + panelScreenMargin;
    const double right = std::max(left, visible.maxX() - panel.width - panelScreenMargin);
    // The bound stands first so that a coordinate that is no number yields to it.
    const double x = std::min(right, std::max(left, field.minX()));
    return {x, std::max(visible.minY() + panelScreenMargin, y)};
}

} // namespace quillory
