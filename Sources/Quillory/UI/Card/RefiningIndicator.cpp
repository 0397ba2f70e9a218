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
constexpr qint64 pulseMilliseconds = 700;
constexpr int frameMilliseconds = 33;

QString words() {
    return QStringLiteral("Refining…");
}

QFont wordsFont() {
    return systemFont(13);
}

} // namespace

RefiningIndicator::RefiningIndicator(QWidget *parent) : QWidget(parent) {
    setAccessibleName(words());
}

QSize RefiningIndicator::sizeHint() const {
    const QFontMetricsF metrics(wordsFont());
    const double textWidth = metrics.horizontalAdvance(words());
    return {static_cast<int>(std::ceil(spinnerSide + spinnerGap + textWidth)),
            static_cast<int>(std::round(std::max<double>(spinnerSide, metrics.height()) + 2 * verticalMargin))};
}

double RefiningIndicator::opacityAt(qint64 milliseconds) {
    static const QEasingCurve curve(QEasingCurve::InOutSine);
    const qint64 phase = milliseconds % (2 * pulseMilliseconds);
    const qint64 rising = phase < pulseMilliseconds ? phase : 2 * pulseMilliseconds - phase;
    const double progress = static_cast<double>(rising) / static_cast<double>(pulseMilliseconds);
    return dimmest + (1 - dimmest) * curve.valueForProgress(progress);
}

void RefiningIndicator::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintSpinner(painter);
    painter.setOpacity(opacityAt(m_sinceShown.isValid() ? m_sinceShown.elapsed() : 0));
    painter.setFont(wordsFont());
    painter.setPen(lookOf(*this).secondary);
    painter.drawText(QRectF(rect()).adjusted(spinnerSide + spinnerGap, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     words());
}

void RefiningIndicator::paintSpinner(QPainter &painter) const {
    const qint64 elapsed = m_sinceShown.isValid() ? m_sinceShown.elapsed() : 0;
    const int leading = static_cast<int>(elapsed / millisecondsPerSpoke % spokes);
    painter.save();
    painter.translate(spinnerSide / 2.0, height() / 2.0);
    for (int spoke = 0; spoke < spokes; ++spoke) {
        const int age = (leading - spoke + spokes) % spokes;
        const double opacity = 1.0 - 0.85 * age / (spokes - 1);
        painter.setPen(QPen(faded(lookOf(*this).secondary, opacity), 2, Qt::SolidLine, Qt::RoundCap));
        painter.save();
        painter.rotate(360.0 * spoke / spokes);
        painter.drawLine(QPointF(0, -3.5), QPointF(0, -6.5));
        painter.restore();
    }
    painter.restore();
}

void RefiningIndicator::showEvent(QShowEvent *event) {
    m_sinceShown.start();
    m_timer.start(frameMilliseconds, this);
    QWidget::showEvent(event);
}

void RefiningIndicator::hideEvent(QHideEvent *event) {
    m_timer.stop();
    QWidget::hideEvent(event);
}

void RefiningIndicator::timerEvent(QTimerEvent * /*event*/) {
    update();
}

} // namespace quillory::ui
