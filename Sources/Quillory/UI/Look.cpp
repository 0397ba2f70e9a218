// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Look.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace quillory::ui {

namespace {

QColor shade(int white, double opacity) {
    return {white, white, white, qRound(opacity * 255)};
}

const Look lightLook{shade(0, 0.88), shade(0, 0.60), shade(0, 0.50), QColor(251, 251, 253, 242)};
const Look darkLook{shade(255, 0.92), shade(255, 0.64), shade(255, 0.48), QColor(41, 42, 47, 242)};

double brightened(double component, double brightness) {
    return std::clamp(component + brightness, 0.0, 1.0);
}

QColor gradientColor(double red, double green, double blue, double brightness) {
    return QColor::fromRgbF(static_cast<float>(brightened(red, brightness)),
                            static_cast<float>(brightened(green, brightness)),
                            static_cast<float>(brightened(blue, brightness)));
}

} // namespace

bool isDark(const QPalette &palette) {
    return palette.color(QPalette::Active, QPalette::Window).lightness() < 128;
}

const Look &lookOf(const QPalette &palette) {
    return isDark(palette) ? darkLook : lightLook;
}

const Look &lookOf(const QWidget &widget) {
    return lookOf(widget.palette());
}

QColor faded(QColor color, double opacity) {
    color.setAlphaF(color.alphaF() * static_cast<float>(opacity));
    return color;
}

QColor mixed(const QColor &from, const QColor &to, double share) {
    const auto part = [share](int a, int b) { return qRound(a + (b - a) * share); };
    return {part(from.red(), to.red()), part(from.green(), to.green()), part(from.blue(), to.blue())};
}

QFont systemFont(double points, QFont::Weight weight, FontDesign design) {
    QFont font = QGuiApplication::font();
    if (design == FontDesign::rounded) {
        font.setFamilies(QStringList{QStringLiteral("Nunito"), QStringLiteral("Varela Round")} + font.families());
    }
    font.setWeight(weight);
    // Pixel sizes are whole numbers in Qt; a size in typographic points can be a fraction.
    const QScreen *screen = QGuiApplication::primaryScreen();
    font.setPointSizeF(points * 72 / (screen != nullptr ? screen->logicalDotsPerInchY() : 96));
    return font;
}

QLinearGradient sharedGradient(const QRectF &rect, double brightness) {
    QLinearGradient gradient(rect.topLeft(), rect.bottomRight());
    gradient.setColorAt(0, gradientColor(0.30, 0.45, 1.0, brightness));
    gradient.setColorAt(0.5, gradientColor(0.62, 0.36, 0.98, brightness));
    gradient.setColorAt(1, gradientColor(0.96, 0.40, 0.62, brightness));
    return gradient;
}

QPainterPath continuousRoundedRect(const QRectF &rect, double radius) {
    // Each corner is one cubic that meets the circle of this radius in its middle; these are where it leaves the edge
    // and where its handles end, seen from the corner.
    const double far = std::min(1.3 * radius, std::min(rect.width(), rect.height()) / 2);
    const double near = (8 * 0.2929 * radius - far) / 3;
    QPainterPath path;
    path.moveTo(rect.left() + far, rect.top());
    path.lineTo(rect.right() - far, rect.top());
    path.cubicTo(rect.right() - near, rect.top(), rect.right(), rect.top() + near, rect.right(), rect.top() + far);
    path.lineTo(rect.right(), rect.bottom() - far);
    path.cubicTo(rect.right(), rect.bottom() - near, rect.right() - near, rect.bottom(), rect.right() - far,
                 rect.bottom());
    path.lineTo(rect.left() + far, rect.bottom());
    path.cubicTo(rect.left() + near, rect.bottom(), rect.left(), rect.bottom() - near, rect.left(),
                 rect.bottom() - far);
    path.lineTo(rect.left(), rect.top() + far);
    path.cubicTo(rect.left(), rect.top() + near, rect.left() + near, rect.top(), rect.left() + far, rect.top());
    path.closeSubpath();
    return path;
}

void drawRoundedBox(QPainter &painter, const QRectF &rect, double radius, const QColor &fill, const QColor &line,
                    double lineWidth) {
    const double inset = lineWidth / 2;
    painter.fillPath(continuousRoundedRect(rect, radius), fill);
    painter.strokePath(continuousRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius - inset),
                       QPen(line, lineWidth));
}

QEasingCurve easeOut() {
    QEasingCurve curve(QEasingCurve::BezierSpline);
    curve.addCubicBezierSegment({0, 0}, {0.58, 1}, {1, 1});
    return curve;
}

} // namespace quillory::ui
