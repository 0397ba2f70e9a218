// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QEasingCurve>
#include <QFont>
#include <QLinearGradient>
#include <QPainterPath>

class QPainter;
class QPalette;
class QWidget;

/// The colours, typefaces and shapes that the windows and the cards share. All sizes are points, and a point is a
/// device-independent pixel, for fonts too: what the desktop sets as text scaling reaches us as the screen's scale.
namespace quillory::ui {

/// The text colours and the background for a light or a dark desktop, with the contrast that small text needs.
struct Look {
    QColor primary;
    QColor secondary;
    QColor tertiary;
    QColor material;
};

/// Whether texts are light on a dark background.
[[nodiscard]] bool isDark(const QPalette &palette);
/// The look that goes with a palette, and so with the desktop's theme.
[[nodiscard]] const Look &lookOf(const QPalette &palette);
[[nodiscard]] const Look &lookOf(const QWidget &widget);

/// The same colour, more transparent.
[[nodiscard]] QColor faded(QColor color, double opacity);
/// An opaque colour that is one at a share of 0 and the other at 1.
[[nodiscard]] QColor mixed(const QColor &from, const QColor &to, double share);

enum class FontDesign { standard, rounded };

/// The desktop's interface font at a size. Rounded: a rounded typeface if one is installed.
[[nodiscard]] QFont systemFont(double points, QFont::Weight weight = QFont::Normal,
                               FontDesign design = FontDesign::standard);

/// The program's gradient, from one corner of a rectangle to the opposite one; each colour brighter by that much.
[[nodiscard]] QLinearGradient sharedGradient(const QRectF &rect, double brightness = 0);

/// A rounded rectangle whose curvature grows gently out of its edges instead of jumping where a circle would begin.
[[nodiscard]] QPainterPath continuousRoundedRect(const QRectF &rect, double radius);

/// Fills such a shape and draws a line along the inside of its edge. The painter has to antialias.
void drawRoundedBox(QPainter &painter, const QRectF &rect, double radius, const QColor &fill, const QColor &line,
                    double lineWidth = 1);

[[nodiscard]] QEasingCurve easeOut();

} // namespace quillory::ui
