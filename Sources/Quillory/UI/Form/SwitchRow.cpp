// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Form/SwitchRow.h"

#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Look.h"

#include <QEvent>
#include <QPainter>

namespace quillory::ui {

namespace {
constexpr double trackWidth = 34;
constexpr double trackHeight = 20;
constexpr double leastSwitchRowHeight = 35;
constexpr int switchGap = 12;
} // namespace

SwitchRow::SwitchRow(const QString &label) : QCheckBox(label) {
    setFont(formFont(bodyPoints));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_knob.setDuration(140);
    m_knob.setEasingCurve(easeOut());
    m_knob.setStartValue(0.0);
    m_knob.setEndValue(0.0);
    connect(&m_knob, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(this, &QCheckBox::toggled, this, [this] { slide(); });
}

QSize SwitchRow::sizeHint() const {
    const QMargins margins = rowMargins();
    const int content = fontMetrics().size(Qt::TextShowMnemonic, text()).width() + switchGap + scaled(trackWidth);
    const int height = std::max(fontMetrics().height(), scaled(trackHeight)) + margins.top() + margins.bottom();
    return {margins.left() + content + margins.right(), std::max(height, scaled(leastSwitchRowHeight))};
}

void SwitchRow::slide() {
    const double from = m_knob.currentValue().toDouble();
    m_knob.stop();
    m_knob.setStartValue(from);
    m_knob.setEndValue(isChecked() ? 1.0 : 0.0);
    m_knob.start();
    if (!isVisible()) {
        m_knob.setCurrentTime(m_knob.duration());
    }
}

void SwitchRow::changeEvent(QEvent *event) {
    QCheckBox::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(formFont(bodyPoints));
    }
}

void SwitchRow::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect inner = rect().marginsRemoved(rowMargins());
    painter.setPen(lookOf(*this).primary);
    painter.drawText(inner, labelFlags(*this, Qt::AlignLeft | Qt::AlignVCenter), text());
    const double height = scaled(trackHeight);
    const double width = scaled(trackWidth);
    paintSwitch(painter, {inner.right() + 1 - width, inner.top() + (inner.height() - height) / 2, width, height});
}

void SwitchRow::paintSwitch(QPainter &painter, const QRectF &track) const {
    const double progress = m_knob.currentValue().toDouble();
    const double radius = track.height() / 2;
    const QColor accent = palette().color(QPalette::Highlight);
    if (showsFocus(*this)) {
        painter.setPen(QPen(faded(accent, 0.5), 3));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(track.adjusted(-2, -2, 2, 2), radius + 2, radius + 2);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(faded(lookOf(*this).primary, 0.22 * (1 - progress)));
    painter.drawRoundedRect(track, radius, radius);
    painter.setBrush(faded(accent, progress));
    painter.drawRoundedRect(track, radius, radius);
    const double side = track.height() - 4;
    const QRectF knob(track.left() + 2 + progress * (track.width() - track.height()), track.top() + 2, side, side);
    painter.setBrush(QColor(0, 0, 0, 40));
    painter.drawEllipse(knob.translated(0, 0.8));
    painter.setBrush(Qt::white);
    painter.drawEllipse(knob);
}

} // namespace quillory::ui
