// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/KeyCap.h"

#include "Quillory/UI/Look.h"

#include <QEvent>
#include <QPainter>

#include <cmath>

namespace quillory::ui {

namespace {

constexpr double hintGap = 5;
constexpr double capHorizontalPadding = 6;
constexpr double capVerticalPadding = 3;
constexpr double capRadius = 5;
constexpr double capLine = 0.5;

QFont capFont() {
    return systemFont(10.5, QFont::Medium, FontDesign::rounded);
}

QFont wordFont() {
    return systemFont(11);
}

} // namespace

KeyCap::KeyCap(const QString &label, QWidget *parent) : QWidget(parent), m_label(label) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

QSize KeyCap::sizeHint() const {
    const QFontMetricsF metrics(capFont());
    return {static_cast<int>(std::ceil(metrics.horizontalAdvance(m_label) + 2 * capHorizontalPadding)),
            static_cast<int>(std::round(metrics.height() + 2 * capVerticalPadding))};
}

void KeyCap::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor primary = lookOf(*this).primary;
    constexpr double inset = capLine / 2;
    painter.fillPath(continuousRoundedRect(rect(), capRadius), faded(primary, 0.07));
    painter.setPen(QPen(faded(primary, 0.12), capLine));
    painter.drawPath(continuousRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), capRadius - inset));
    painter.setFont(capFont());
    painter.setPen(lookOf(*this).secondary);
    painter.drawText(rect(), Qt::AlignCenter, m_label);
}

KeyHints::KeyHints(QWidget *parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    for (const auto &[key, word] : {std::pair(QStringLiteral("Tab"), QStringLiteral("accept")),
                                    std::pair(QStringLiteral("Esc"), QStringLiteral("dismiss"))}) {
        m_hints.append({new KeyCap(key, this), word, 0});
    }
    arrange();
    setAccessibleName(QStringLiteral("Tab accept, Esc dismiss"));
}

void KeyHints::arrange() {
    double left = 0;
    for (Hint &hint : m_hints) {
        hint.cap->resize(hint.cap->sizeHint());
        hint.cap->move(static_cast<int>(std::ceil(left)), 0);
        hint.x = hint.cap->x() + hint.cap->width() + hintGap;
        m_width = hint.x + QFontMetricsF(wordFont()).horizontalAdvance(hint.word);
        left = m_width + hintGap;
    }
    resize(sizeHint());
}

// The desktop's font may change while the program runs.
void KeyHints::changeEvent(QEvent *event) {
    if (event->type() == QEvent::FontChange || event->type() == QEvent::ApplicationFontChange) {
        arrange();
    }
    QWidget::changeEvent(event);
}

QSize KeyHints::sizeHint() const {
    return {static_cast<int>(std::ceil(m_width)), m_hints.constFirst().cap->height()};
}

void KeyHints::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setFont(wordFont());
    painter.setPen(lookOf(*this).tertiary);
    for (const Hint &hint : m_hints) {
        painter.drawText(QRectF(hint.x, 0, m_width, height()), Qt::AlignLeft | Qt::AlignVCenter, hint.word);
    }
}

} // namespace quillory::ui
