// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Form/ClampedText.h"

#include <QHelpEvent>
#include <QPainter>
#include <QTextLayout>
#include <QToolTip>

namespace quillory::ui {

ClampedText::ClampedText(double points, int lines) : m_points(points), m_lines(lines) {
    setFont(formFont(m_points));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ClampedText::setText(const QString &text, Tint tint) {
    m_text = text;
    m_tint = tint;
    setAccessibleName(text);
    update();
}

QSize ClampedText::sizeHint() const {
    return {0, m_lines * fontMetrics().lineSpacing()};
}

bool ClampedText::event(QEvent *event) {
    if (event->type() == QEvent::ToolTip && !m_text.isEmpty()) {
        // As a paragraph it is broken into lines; left to itself, a service's words might be taken for markup.
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(),
                           QStringLiteral("<p>%1</p>").arg(m_text.toHtmlEscaped()), this);
        return true;
    }
    return QWidget::event(event);
}

void ClampedText::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(formFont(m_points));
    }
}

void ClampedText::paintEvent(QPaintEvent * /*event*/) {
    const QString text = QString(m_text).replace(u'\n', u' ');
    QTextLayout layout(text, font());
    layout.beginLayout();
    QStringList lines;
    for (QTextLine line = layout.createLine(); line.isValid() && lines.size() < m_lines; line = layout.createLine()) {
        line.setLineWidth(width());
        const bool isLast = lines.size() == m_lines - 1;
        lines.append(isLast ? fontMetrics().elidedText(text.sliced(line.textStart()), Qt::ElideRight, width())
                            : text.sliced(line.textStart(), line.textLength()));
    }
    layout.endLayout();
    QPainter painter(this);
    painter.setPen(tintColor(*this, m_tint));
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, lines.join(u'\n'));
}

} // namespace quillory::ui
