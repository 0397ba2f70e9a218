// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Geometry.h"

#include <chrono>
#include <memory>

class QObject;

namespace platform {

/// Dynamic properties of a content view that describe where it is filled, so that a panel window can give just that a
/// shadow, an outline and the pointer: a list of rectangles (QVariantList of QRectF) in the view's coordinates, and
/// the radius of their corners (double). A view without them is filled all over.
inline constexpr const char *panelShapeProperty = "panelShape";
inline constexpr const char *panelCornerRadiusProperty = "panelCornerRadius";

/// A floating window that never takes the keyboard focus: borderless, above normal windows, on every workspace,
/// transparent where its content is. Starts off screen with alpha 1 and the zero frame. Frames are in screen
/// coordinates (points, origin at the bottom left of the primary screen, y upwards). Main thread only.
class PanelWindow {
  public:
    virtual ~PanelWindow() = default;
    /// Shows this view inside; on a desktop that draws with Qt it is a QWidget. The caller keeps it alive.
    virtual void setContentView(QObject *view) = 0;
    /// Changes the size, keeping the bottom left corner.
    virtual void setContentSize(Size size) = 0;
    virtual void setFrameOrigin(Point origin) = 0;
    [[nodiscard]] virtual Rect frame() const = 0;
    /// 0 is invisible, 1 opaque.
    virtual void setAlpha(double alpha) = 0;
    /// Puts the window on screen above the others without activating this program.
    virtual void orderFrontRegardless() = 0;
    /// Takes the window off the screen at once and ends a running animation.
    virtual void orderOut() = 0;
    [[nodiscard]] virtual bool isVisible() const = 0;
    /// Moves and fades with the ease-out timing curve. A later setFrameOrigin or setAlpha takes over from it.
    virtual void animate(Point origin, double alpha, std::chrono::milliseconds duration) = 0;
};

/// Makes panel windows. Main thread only.
class PanelWindows {
  public:
    virtual ~PanelWindows() = default;
    [[nodiscard]] virtual std::unique_ptr<PanelWindow> create() = 0;
};

} // namespace platform
