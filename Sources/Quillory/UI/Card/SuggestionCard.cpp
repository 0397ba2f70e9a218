// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/SuggestionCard.h"

#include "Quillory/UI/Card/CardButtons.h"
#include "Quillory/UI/Card/CardText.h"
#include "Quillory/UI/Card/KeyHints.h"
#include "Quillory/UI/Card/RefiningIndicator.h"
#include "Quillory/UI/Look.h"
#include "Quillory/UI/Symbols.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace quillory::ui {

namespace {

constexpr int padding = 16;
constexpr int rowGap = 11;
constexpr double headerGap = 7;
// The least distance between button and hints: the row's spacing on both sides of a flexible space of at least 8.
constexpr int footerGap = 12 + 8 + 12;
// The distance when the hints stand below the button.
constexpr int footerRowGap = 8;
constexpr double badgeGap = 3;
constexpr double badgeHorizontalPadding = 6;
constexpr double badgeVerticalPadding = 2.5;

QFont labelFont() {
    return systemFont(12, QFont::DemiBold);
}

QFont badgeFont() {
    return systemFont(10.5, QFont::DemiBold, FontDesign::rounded);
}

double badgeHeight() {
    return std::max(QFontMetricsF(badgeFont()).height(), symbolSide(8.5)) + 2 * badgeVerticalPadding;
}

// The same with and without a badge, so that the text does not jump when the badge appears.
int headerHeight() {
    return static_cast<int>(std::ceil(std::max({symbolSide(13), QFontMetricsF(labelFont()).height(), badgeHeight(),
                                                double(HoverIconButton::symbolExtent())})));
}

QRectF centredOnHeader(double left, double width, double height) {
    return {left, padding + std::round((headerHeight() - height) / 2), width, height};
}

} // namespace

SuggestionCard::SuggestionCard(QWidget *parent)
    : QWidget(parent), m_close(new HoverIconButton(symbolName::close, QStringLiteral("Dismiss"), this)),
      m_text(new CardText(this)), m_refining(new RefiningIndicator(this)), m_accept(new AcceptButton(this)),
      m_hints(new KeyHints(this)) {
    setFocusPolicy(Qt::NoFocus);
    m_text->onCopyMenu = [this](QPoint place, const QString &text) {
        if (onCopyMenu) {
            onCopyMenu(m_text->mapToParent(place), text);
        }
    };
    connect(m_accept, &QAbstractButton::clicked, this, [this] { onAccept(); });
    connect(m_close, &QAbstractButton::clicked, this, [this] { onDismiss(); });
}

SuggestionCard::State SuggestionCard::state() const {
    if (m_data.failed) {
        return State::failed;
    }
    return m_data.text ? State::text : State::waiting;
}

void SuggestionCard::setData(const SuggestionCardData &card, bool showKeyHints) {
    if (card.label != m_data.label || card.elapsedText != m_data.elapsedText) {
        update();
    }
    m_data = card;
    m_showKeyHints = showKeyHints;
    const State current = state();
    if (current == State::text) {
        m_text->setStyle(systemFont(13.5), 3.5, true);
    } else {
        m_text->setStyle(systemFont(12), 0, false);
    }
    m_text->setText(card.text.value_or(current == State::failed ? QStringLiteral("No suggestion") : QString()));
    m_text->setVisible(current != State::waiting);
    m_refining->setVisible(current == State::waiting);
    m_accept->setVisible(current == State::text);
    m_accept->setEnabled(card.isComplete && !card.failed);
    m_hints->setVisible(current == State::text && showKeyHints);
    setAccessibleName(card.elapsedText ? card.label + u' ' + *card.elapsedText : card.label);
}

SuggestionCard::Heights SuggestionCard::heightsFor(int width) {
    const int innerWidth = width - 2 * padding;
    const int frame = 2 * padding + headerHeight() + rowGap;
    switch (state()) {
    case State::waiting:
        return {0, frame + m_refining->sizeHint().height()};
    case State::failed:
        return {m_text->heightForTextWidth(innerWidth), frame};
    case State::text:
        break;
    }
    return {m_text->heightForTextWidth(innerWidth), frame + rowGap + footerHeight(innerWidth)};
}

void SuggestionCard::layOut(int width, Heights heights) {
    resize(width, heights.text + heights.rest);
    const int innerWidth = width - 2 * padding;
    const QSize close = m_close->sizeHint();
    const int closeMargin = (close.width() - HoverIconButton::symbolExtent()) / 2;
    m_close->setGeometry(width - padding - close.width() + closeMargin, padding + (headerHeight() - close.height()) / 2,
                         close.width(), close.height());
    const int top = padding + headerHeight() + rowGap;
    m_refining->setGeometry(QRect({padding, top}, m_refining->sizeHint()));
    m_text->setGeometry(padding, top, innerWidth + CardText::scrollMargin, heights.text);
    if (state() == State::text) {
        layOutFooter(top + heights.text + rowGap, innerWidth);
    }
}

bool SuggestionCard::footerFitsInOneRow(int innerWidth) const {
    return m_accept->sizeHint().width() + footerGap + m_hints->sizeHint().width() <= innerWidth;
}

int SuggestionCard::footerHeight(int innerWidth) const {
    const int button = m_accept->sizeHint().height();
    const int hints = m_hints->sizeHint().height();
    if (!m_showKeyHints) {
        return button;
    }
    return footerFitsInOneRow(innerWidth) ? std::max(button, hints) : button + footerRowGap + hints;
}

// With a wide typeface the hints may not fit beside the button; they are never squeezed, so they go below it.
void SuggestionCard::layOutFooter(int top, int innerWidth) {
    const QSize button = m_accept->sizeHint();
    const QSize hints = m_hints->sizeHint();
    if (!footerFitsInOneRow(innerWidth)) {
        m_accept->setGeometry(QRect({padding, top}, button));
        m_hints->setGeometry(QRect({padding, top + button.height() + footerRowGap}, hints));
        return;
    }
    const int height = m_showKeyHints ? std::max(button.height(), hints.height()) : button.height();
    m_accept->setGeometry(QRect({padding, top + (height - button.height()) / 2}, button));
    m_hints->setGeometry(QRect({padding + innerWidth - hints.width(), top + (height - hints.height()) / 2}, hints));
}

void SuggestionCard::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Look &look = lookOf(*this);
    drawRoundedBox(painter, rect(), cornerRadius, look.material, faded(look.primary, 0.1));
    paintHeader(painter);
}

void SuggestionCard::paintHeader(QPainter &painter) const {
    const double side = symbolSide(13);
    const QRectF wand = centredOnHeader(padding, side, side);
    drawSymbol(painter, wand, symbolName::wand, sharedGradient(wand));
    const QFontMetricsF metrics(labelFont());
    const double left = wand.right() + headerGap;
    const double room = m_close->x() - headerGap - left;
    const QString label = metrics.elidedText(m_data.label, Qt::ElideRight, room);
    const double labelWidth = metrics.horizontalAdvance(label);
    painter.setFont(labelFont());
    painter.setPen(lookOf(*this).secondary);
    painter.drawText(centredOnHeader(left, labelWidth + 1, metrics.height()), Qt::AlignLeft | Qt::AlignVCenter, label);
    if (m_data.elapsedText) {
        paintBadge(painter, left + labelWidth + headerGap);
    }
}

void SuggestionCard::paintBadge(QPainter &painter, double left) const {
    const double side = symbolSide(8.5);
    const double textWidth = QFontMetricsF(badgeFont()).horizontalAdvance(*m_data.elapsedText);
    const double width = side + badgeGap + textWidth + 2 * badgeHorizontalPadding;
    const QRectF badge = centredOnHeader(std::round(left), width, badgeHeight());
    painter.setPen(Qt::NoPen);
    painter.setBrush(faded(lookOf(*this).primary, 0.07));
    painter.drawRoundedRect(badge, badge.height() / 2, badge.height() / 2);
    const QRectF bolt(badge.left() + badgeHorizontalPadding, std::round(badge.center().y() - side / 2), side, side);
    drawSymbol(painter, bolt, symbolName::bolt, lookOf(*this).secondary);
    painter.setFont(badgeFont());
    painter.setPen(lookOf(*this).secondary);
    painter.drawText(badge.adjusted(badgeHorizontalPadding + side + badgeGap, 0, 0, 0),
                     Qt::AlignLeft | Qt::AlignVCenter, *m_data.elapsedText);
}

} // namespace quillory::ui
