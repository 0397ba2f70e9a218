// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/Hover.h"

#include "Quillory/UI/Look.h"

#include <QEvent>
#include <QWidget>

namespace quillory::ui {

Hover::Hover(QWidget &view) : m_view(view) {
    m_animation.setDuration(120);
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(0.0);
    m_animation.setEasingCurve(easeOut());
    connect(&m_animation, &QVariantAnimation::valueChanged, this, [this] { m_view.update(); });
    view.installEventFilter(this);
}

bool Hover::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::Enter) {
        set(true);
    } else if (event->type() == QEvent::Leave || event->type() == QEvent::Hide) {
        set(false);
    }
    return QObject::eventFilter(watched, event);
}

void Hover::set(bool hovering) {
    if (hovering == m_hovering) {
        return;
    }
    m_hovering = hovering;
    const double from = progress();
    m_animation.stop();
    m_animation.setStartValue(from);
    m_animation.setEndValue(hovering ? 1.0 : 0.0);
    m_animation.start();
}

double Hover::progress() const {
    const QVariant value = m_animation.currentValue();
    return value.isValid() ? value.toDouble() : 0;
}

} // namespace quillory::ui
