// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/UI/Hover.h"

#include "Quillory/UI/Look.h"

#include <QWidget>

namespace quillory::ui {

Hover::Hover(QWidget &view) {
    m_animation.setDuration(120);
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(0.0);
    m_animation.setEasingCurve(easeOut());
    QObject::connect(&m_animation, &QVariantAnimation::valueChanged, &view, [&view] { view.update(); });
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
