// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>

namespace platform {

struct Point {
    double x = 0;
    double y = 0;
    friend bool operator==(const Point &, const Point &) = default;
};

struct Size {
    double width = 0;
    double height = 0;
    friend bool operator==(const Size &, const Size &) = default;
};

/// A rectangle in points (device-independent pixels). Whether y grows downwards (accessibility coordinates, origin
/// at the top left of the primary screen) or upwards (screen coordinates, origin at its bottom left) is said by
/// whoever hands one out.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] double minX() const { return x; }
    [[nodiscard]] double maxX() const { return x + width; }
    [[nodiscard]] double midX() const { return x + width / 2; }
    [[nodiscard]] double minY() const { return y; }
    [[nodiscard]] double maxY() const { return y + height; }
    [[nodiscard]] double midY() const { return y + height / 2; }
    [[nodiscard]] Point origin() const { return {x, y}; }
    [[nodiscard]] Size size() const { return {width, height}; }
    /// The lower edges belong to the rectangle, the upper ones do not, so adjoining screens never share a point.
    [[nodiscard]] bool contains(Point point) const {
        return point.x >= x && point.x < maxX() && point.y >= y && point.y < maxY();
    }
    [[nodiscard]] bool isZero() const { return *this == Rect{}; }
    friend bool operator==(const Rect &, const Rect &) = default;
};

} // namespace platform
