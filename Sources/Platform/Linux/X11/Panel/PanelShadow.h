// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QRectF>

class QPainter;

namespace platform::desktop {

/// The soft shadow of a rounded rectangle, of any size from one small picture.
class PanelShadow {
  public:
    /// How far it reaches beyond its rectangle, in points.
    static constexpr int extent = 34;

    /// Paints the shadow of a rectangle, and nothing where the rectangle itself is. The picture is kept for one radius
    /// and scale at a time.
    void paint(QPainter &painter, const QRectF &rect, double cornerRadius, double opacity);

  private:
    void prepare(double cornerRadius, double scale);

    QImage m_picture;
    double m_cornerRadius = -1;
    double m_scale = 0;
};

} // namespace platform::desktop
