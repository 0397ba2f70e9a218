// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/Panel/PanelShadow.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace platform::desktop {

namespace {

/// One layer of a shadow, in points. The offset is downwards.
struct Layer {
    double sigma;
    double offset;
    double strength;
};
// A close one that sets the edge off, and a wide one that lifts the card.
constexpr std::array layers{Layer{1.2, 0.5, 0.30}, Layer{10, 6, 0.75}};

// The size of a corner piece: the shadow outside, the corner, and as far inside as the wide layer still curves.
int cornerExtent(double cornerRadius) {
    return PanelShadow::extent + static_cast<int>(std::ceil(cornerRadius)) + 22;
}

double distanceOutside(QPointF point, const QRectF &rect, double radius) {
    const double x = std::abs(point.x() - rect.center().x()) - rect.width() / 2 + radius;
    const double y = std::abs(point.y() - rect.center().y()) - rect.height() / 2 + radius;
    return std::hypot(std::max(x, 0.0), std::max(y, 0.0)) + std::min(std::max(x, y), 0.0) - radius;
}

double shadowAt(QPointF point, const QRectF &rect, double cornerRadius) {
    double light = 1;
    for (const Layer &layer : layers) {
        const double distance = distanceOutside(point, rect.translated(0, layer.offset), cornerRadius + layer.sigma);
        light *= 1 - layer.strength * 0.5 * std::erfc(distance / (layer.sigma * std::numbers::sqrt2));
    }
    // Fades out to nothing instead of ending in an edge.
    const double reach = distanceOutside(point, rect, cornerRadius);
    return (1 - light) * std::clamp((PanelShadow::extent - reach) / 8, 0.0, 1.0);
}

} // namespace

void PanelShadow::prepare(double cornerRadius, double scale) {
    if (cornerRadius == m_cornerRadius && scale == m_scale) {
        return;
    }
    m_cornerRadius = cornerRadius;
    m_scale = scale;
    const int side = 2 * cornerExtent(cornerRadius) + 2;
    const int pixels = static_cast<int>(std::lround(side * scale));
    m_picture = QImage(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    const QRectF rect = QRectF(0, 0, side, side).adjusted(extent, extent, -extent, -extent);
    for (int y = 0; y < pixels; ++y) {
        auto *line = reinterpret_cast<QRgb *>(m_picture.scanLine(y));
        for (int x = 0; x < pixels; ++x) {
            const double alpha = shadowAt({(x + 0.5) / scale, (y + 0.5) / scale}, rect, cornerRadius);
            line[x] = qRgba(0, 0, 0, static_cast<int>(std::lround(alpha * 255)));
        }
    }
}

void PanelShadow::paint(QPainter &painter, const QRectF &rect, double cornerRadius, double opacity) {
    const double scale = painter.deviceTransform().m11();
    prepare(cornerRadius, scale);
    const QRectF outer = rect.adjusted(-extent, -extent, extent, extent);
    const double corner = std::min(static_cast<double>(cornerExtent(cornerRadius)), outer.height() / 2);
    const double side = m_picture.width() / scale;
    const std::array<double, 4> from{0, corner, side - corner, side};
    const std::array<double, 4> toX{outer.left(), outer.left() + corner, outer.right() - corner, outer.right()};
    const std::array<double, 4> toY{outer.top(), outer.top() + corner, outer.bottom() - corner, outer.bottom()};
    painter.save();
    painter.setOpacity(opacity);
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const QRectF target(QPointF(toX[column], toY[row]), QPointF(toX[column + 1], toY[row + 1]));
            const QRectF source(QPointF(from[column], from[row]), QPointF(from[column + 1], from[row + 1]));
            painter.drawImage(target, m_picture, QRectF(source.topLeft() * scale, source.size() * scale));
        }
    }
    painter.setOpacity(1);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    // A little smaller than the card, whose corners may be rounder than a circle.
    QPainterPath inside;
    inside.addRoundedRect(rect.adjusted(1, 1, -1, -1), cornerRadius, cornerRadius);
    painter.fillPath(inside, Qt::black);
    painter.restore();
}

} // namespace platform::desktop
