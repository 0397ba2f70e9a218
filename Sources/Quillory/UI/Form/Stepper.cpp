// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Form/Stepper.h"

#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Look.h"

#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>

namespace quillory::ui {

namespace {
constexpr double stepperWidth = 19;
constexpr double stepperHeight = 24;
constexpr double stepperRadius = 5.5;
constexpr int untilRepeat = 400;
constexpr int betweenRepeats = 80;
} // namespace

Stepper::Stepper() {
    lineEdit()->hide();
    lineEdit()->setReadOnly(true); // digits would be typed into it
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize Stepper::sizeHint() const {
    return {scaled(stepperWidth), scaled(stepperHeight)};
}

void Stepper::mousePressEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    m_pressed = event->position().y() < height() / 2.0 ? 1 : -1;
    stepBy(m_pressed);
    m_repeat.start(untilRepeat, this);
    update();
}

void Stepper::mouseReleaseEvent(QMouseEvent * /*event*/) {
    m_pressed = 0;
    m_repeat.stop();
    update();
}

// A window that goes while an arrow is held takes the release with it.
void Stepper::hideEvent(QHideEvent *event) {
    m_pressed = 0;
    m_repeat.stop();
    QSpinBox::hideEvent(event);
}

// The toolkit's own would look for arrows where its style draws them.
void Stepper::mouseMoveEvent(QMouseEvent *event) {
    event->accept();
}

void Stepper::timerEvent(QTimerEvent *event) {
    if (event->timerId() != m_repeat.timerId()) {
        QSpinBox::timerEvent(event);
        return;
    }
    stepBy(m_pressed);
    m_repeat.start(betweenRepeats, this);
}

void Stepper::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const bool isFocused = showsFocus(*this);
    painter.setPen(isFocused ? QPen(palette().color(QPalette::Highlight), 1.6)
                             : QPen(faded(lookOf(*this).primary, 0.18), 1));
    painter.setBrush(palette().color(QPalette::Button));
    painter.drawPath(continuousRoundedRect(frame, stepperRadius));
    painter.setClipPath(continuousRoundedRect(frame, stepperRadius));
    const double middle = height() / 2.0;
    paintHalf(painter, {0, 0, double(width()), middle}, 1);
    paintHalf(painter, {0, middle, double(width()), middle}, -1);
}

void Stepper::paintHalf(QPainter &painter, const QRectF &half, int direction) const {
    if (m_pressed == direction) {
        painter.fillRect(half, faded(lookOf(*this).primary, 0.12));
    }
    const bool isPossible = stepEnabled().testFlag(direction > 0 ? StepUpEnabled : StepDownEnabled);
    const double reach = half.width() * 0.19;
    const QPointF tip(half.center().x(), half.center().y() + direction * (0.8 - reach / 2));
    const double base = tip.y() + direction * reach;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(faded(lookOf(*this).primary, isPossible ? 0.8 : 0.3), scaled(1.5), Qt::SolidLine, Qt::RoundCap,
                        Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{{tip.x() - reach, base}, tip, {tip.x() + reach, base}});
}

} // namespace quillory::ui
