// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Form/LinkButton.h"

#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Look.h"
#include "Quillory/UI/Symbols.h"

#include <QEvent>
#include <QPainter>
#include <QShortcutEvent>

namespace quillory::ui {

namespace {
constexpr int linkPadding = 3;
constexpr int linkGap = 5;
} // namespace

LinkButton::LinkButton(const QString &symbol, const QString &label) : m_symbol(symbol), m_hover(*this) {
    setText(label);
    setFont(formFont(bodyPoints));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize LinkButton::sizeHint() const {
    const QFontMetrics metrics(font());
    const int side = qRound(symbolSide(bodyPoints * textScale()));
    return {2 * linkPadding + side + linkGap + metrics.size(Qt::TextShowMnemonic, text()).width(),
            2 * linkPadding + std::max(side, metrics.height())};
}

// The toolkit's own click by mnemonic takes a tenth of a second, and keys typed meanwhile go to where the focus was.
bool LinkButton::event(QEvent *event) {
    if (event->type() == QEvent::Shortcut && !static_cast<QShortcutEvent *>(event)->isAmbiguous()) {
        click();
        return true;
    }
    return QAbstractButton::event(event);
}

void LinkButton::changeEvent(QEvent *event) {
    QAbstractButton::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(formFont(bodyPoints));
    }
}

void LinkButton::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (showsFocus(*this)) {
        painter.setPen(QPen(faded(palette().color(QPalette::Highlight), 0.7), 2));
        painter.drawPath(continuousRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 5));
    }
    const QColor accent = faded(tintColor(*this, Tint::accent), isDown() ? 0.6 : 1 - 0.15 * m_hover.progress());
    const double side = symbolSide(bodyPoints * textScale());
    drawSymbol(painter, {double(linkPadding), std::round((height() - side) / 2), side, side}, m_symbol, accent);
    painter.setPen(accent);
    painter.drawText(rect().adjusted(linkPadding + qRound(side) + linkGap, 0, 0, 0),
                     labelFlags(*this, Qt::AlignLeft | Qt::AlignVCenter), text());
}

} // namespace quillory::ui
