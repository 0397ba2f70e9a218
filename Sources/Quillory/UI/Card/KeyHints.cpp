// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/KeyHints.h"

#include "Quillory/UI/Look.h"

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

struct Hint {
    QString key;
    QString word;
    QRectF cap;
    QRectF text;
};

/// The hints where they stand, from left to right, in the desktop's present font.
QList<Hint> arrangedHints() {
    const QFontMetricsF caps(capFont());
    const QFontMetricsF words(wordFont());
    const double height = std::round(caps.height() + 2 * capVerticalPadding);
    QList<Hint> hints{{QStringLiteral("Tab"), QStringLiteral("accept"), {}, {}},
                      {QStringLiteral("Esc"), QStringLiteral("dismiss"), {}, {}}};
    double left = 0;
    for (auto &[key, word, cap, text] : hints) {
        cap = {std::ceil(left), 0, std::ceil(caps.horizontalAdvance(key) + 2 * capHorizontalPadding), height};
        text = {cap.right() + hintGap, 0, words.horizontalAdvance(word), height};
        left = text.right() + hintGap;
    }
    return hints;
}

} // namespace

KeyHints::KeyHints(QWidget *parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleName(QStringLiteral("Tab accept, Esc dismiss"));
}

QSize KeyHints::sizeHint() const {
    const QRectF last = arrangedHints().constLast().text;
    return {static_cast<int>(std::ceil(last.right())), static_cast<int>(last.height())};
}

void KeyHints::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Look &look = lookOf(*this);
    const auto hints = arrangedHints();
    for (const auto &[key, word, cap, text] : hints) {
        drawRoundedBox(painter, cap, capRadius, faded(look.primary, 0.07), faded(look.primary, 0.12), capLine);
        painter.setFont(capFont());
        painter.setPen(look.secondary);
        painter.drawText(cap, Qt::AlignCenter, key);
        painter.setFont(wordFont());
        painter.setPen(look.tertiary);
        painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, word);
    }
}

} // namespace quillory::ui
