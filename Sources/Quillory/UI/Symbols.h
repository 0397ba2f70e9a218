// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBrush>
#include <QIcon>
#include <QRectF>
#include <QString>

class QPainter;

namespace quillory::ui {

/// The names of the symbols in Icons/.
namespace symbolName {
inline const QString wand = QStringLiteral("wand.and.stars");
inline const QString bolt = QStringLiteral("bolt.fill");
inline const QString checkmark = QStringLiteral("checkmark");
inline const QString close = QStringLiteral("xmark.circle.fill");
inline const QString sliders = QStringLiteral("slider.horizontal.3");
inline const QString briefcase = QStringLiteral("briefcase");
inline const QString warning = QStringLiteral("exclamationmark.triangle.fill");
inline const QString done = QStringLiteral("checkmark.circle.fill");
inline const QString trash = QStringLiteral("trash");
inline const QString plus = QStringLiteral("plus.circle.fill");
} // namespace symbolName

/// The side of the square that a symbol takes beside text of this size, in points.
[[nodiscard]] double symbolSide(double points);

/// Draws a symbol into a rectangle, filled with a brush whose coordinates are the painter's. Crisp at the painter's
/// scale. A symbol that does not exist draws nothing.
void drawSymbol(QPainter &painter, const QRectF &rect, const QString &name, const QBrush &brush);

/// A symbol as the icon of a control. FormStyle draws it by its name, in the colour of the control's text.
[[nodiscard]] QIcon symbolIcon(const QString &name);

} // namespace quillory::ui
