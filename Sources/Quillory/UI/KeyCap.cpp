// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/UI/KeyCap.h"

#include "Quillory/UI/Look.h"

#include <QPainter>

#include <cmath>

namespace quillory::ui {

namespace {

constexpr double hintGap = 5;

QFont capFont() {
    return systemFont(10.5, QFont::Medium, FontDesign::rounded);
}

QFont wordFont() {
    return systemFont(11);
}

} // namespace

KeyCap::KeyCap(const QString &label, QWidget *parent) : QWidget(parent), m_label(label) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    resize(sizeHint());
}

QSize KeyCap::sizeHint() const {
    const QFontMetricsF metrics(capFont());
    return {static_cast<int>(std::ceil(metrics.horizontalAdvance(m_label) + 12)),
            static_cast<int>(std::round(metrics.height() + 6))};
}

void KeyCap::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor primary = lookOf(*this).primary;
    painter.fillPath(continuousRoundedRect(rect(), 5), faded(primary, 0.07));
    painter.setPen(QPen(faded(primary, 0.12), 0.5));
    painter.drawPath(continuousRoundedRect(QRectF(rect()).adjusted(0.25, 0.25, -0.25, -0.25), 4.75));
    painter.setFont(capFont());
    painter.setPen(lookOf(*this).secondary);
    painter.drawText(rect(), Qt::AlignCenter, m_label);
}

KeyHints::KeyHints(QWidget *parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    addHint(QStringLiteral("Tab"), QStringLiteral("accept"));
    addHint(QStringLiteral("Esc"), QStringLiteral("dismiss"));
    resize(sizeHint());
    setAccessibleName(QStringLiteral("Tab accept, Esc dismiss"));
}

void KeyHints::addHint(const QString &key, const QString &word) {
    auto *cap = new KeyCap(key, this);
    const double left = m_hints.isEmpty() ? 0 : m_width + hintGap;
    cap->move(static_cast<int>(std::ceil(left)), 0);
    const double wordLeft = cap->x() + cap->width() + hintGap;
    m_hints.append({cap, word, wordLeft});
    m_width = wordLeft + QFontMetricsF(wordFont()).horizontalAdvance(word);
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
