// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/RefiningIndicator.h"

#include "Quillory/UI/Look.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace quillory::ui {

namespace {

constexpr int spinnerSide = 16;
constexpr int spokes = 8;
constexpr int millisecondsPerSpoke = 100;
constexpr double spinnerGap = 8;
constexpr double verticalMargin = 2;
constexpr double dimmest = 0.45;
constexpr int pulseMilliseconds = 700;
constexpr int frameMilliseconds = 33;

QString words() {
    return QStringLiteral("Refining…");
}

QFont wordsFont() {
    return systemFont(13);
}

/// The opacity of the words this long after they were first shown.
double pulse(qint64 milliseconds) {
    static const QEasingCurve curve(QEasingCurve::InOutSine);
    const double phase = static_cast<double>(milliseconds % (2 * pulseMilliseconds)) / pulseMilliseconds;
    return dimmest + (1 - dimmest) * curve.valueForProgress(phase < 1 ? phase : 2 - phase);
}

/// Spokes around the painter's origin, of which the brightest moves on.
void paintSpinner(QPainter &painter, qint64 milliseconds, const QColor &color) {
    const int leading = static_cast<int>(milliseconds / millisecondsPerSpoke % spokes);
    for (int spoke = 0; spoke < spokes; ++spoke) {
        const int age = (leading - spoke + spokes) % spokes;
        painter.setPen(QPen(faded(color, 1.0 - 0.85 * age / (spokes - 1)), 2, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -3.5), QPointF(0, -6.5));
        painter.rotate(360.0 / spokes);
    }
}

} // namespace

RefiningIndicator::RefiningIndicator(QWidget *parent) : QWidget(parent) {
    setAccessibleName(words());
    m_frames.setInterval(frameMilliseconds);
    m_frames.callOnTimeout(this, qOverload<>(&QWidget::update));
}

QSize RefiningIndicator::sizeHint() const {
    const QFontMetricsF metrics(wordsFont());
    const double textWidth = metrics.horizontalAdvance(words());
    return {static_cast<int>(std::ceil(spinnerSide + spinnerGap + textWidth)),
            static_cast<int>(std::round(std::max<double>(spinnerSide, metrics.height()) + 2 * verticalMargin))};
}

void RefiningIndicator::paintEvent(QPaintEvent * /*event*/) {
    const qint64 elapsed = m_sinceShown.isValid() ? m_sinceShown.elapsed() : 0;
    const QColor color = lookOf(*this).secondary;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(spinnerSide / 2.0, height() / 2.0);
    paintSpinner(painter, elapsed, color);
    painter.resetTransform();
    painter.setOpacity(pulse(elapsed));
    painter.setFont(wordsFont());
    painter.setPen(color);
    painter.drawText(QRectF(rect()).adjusted(spinnerSide + spinnerGap, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     words());
}

void RefiningIndicator::showEvent(QShowEvent *event) {
    m_sinceShown.start();
    m_frames.start();
    QWidget::showEvent(event);
}

void RefiningIndicator::hideEvent(QHideEvent *event) {
    m_frames.stop();
    QWidget::hideEvent(event);
}

} // namespace quillory::ui
