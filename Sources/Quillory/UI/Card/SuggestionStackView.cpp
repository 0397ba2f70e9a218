// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/SuggestionStackView.h"

#include "Platform/PanelWindow.h"
#include "Quillory/Panel/SuggestionPanelController.h"
#include "Quillory/UI/AccessibleViews.h"
#include "Quillory/UI/Card/CopyMenu.h"

#include <QGuiApplication>
#include <QScreen>
#include <QVariant>

#include <algorithm>
#include <limits>

namespace quillory::ui {

namespace {

constexpr int cardGap = 8;
// A text never gets less than this.
constexpr int leastTextHeight = 60;

/// The height to cut the texts at so that together they fit into what is available.
int fairLimit(std::vector<int> heights, int available) {
    std::sort(heights.begin(), heights.end());
    int left = available;
    for (std::size_t i = 0; i < heights.size(); ++i) {
        const int share = left / static_cast<int>(heights.size() - i);
        if (heights[i] > share) {
            return share;
        }
        left -= heights[i];
    }
    return heights.empty() ? 0 : heights.back();
}

// It is not known here which screen the panel will be on, so it has to fit on any of them.
int tallestPanel() {
    int height = std::numeric_limits<int>::max();
    for (const QScreen *screen : QGuiApplication::screens()) {
        height = std::min(height, screen->availableGeometry().height() - 2 * static_cast<int>(panelScreenMargin));
    }
    return height;
}

} // namespace

SuggestionStackView::SuggestionStackView() : m_copyMenu(new CopyMenu(this)) {
    installAccessibleViews();
    setFocusPolicy(Qt::NoFocus);
    setProperty(platform::panelCornerRadiusProperty, SuggestionCard::cornerRadius);
}

void SuggestionStackView::addCard() {
    auto *card = new SuggestionCard(this);
    const int index = static_cast<int>(m_cards.size());
    // Call copies: the callee may replace the callbacks.
    card->onAccept = [this, index] {
        const auto accept = m_onAccept;
        accept(index);
    };
    card->onDismiss = [this] {
        const auto dismiss = m_onDismiss;
        dismiss();
    };
    card->onCopyMenu = [this, card](QPoint place, const QString &text) {
        m_copyMenu->popUp(card->mapToParent(place), text);
    };
    m_cards.push_back(card);
    card->show();
}

platform::Size SuggestionStackView::setRootView(const SuggestionCards &cards, double width,
                                                std::function<void(int)> onAccept, std::function<void()> onDismiss) {
    m_onAccept = std::move(onAccept);
    m_onDismiss = std::move(onDismiss);
    setCount(static_cast<std::size_t>(cards.size()));
    for (std::size_t i = 0; i < m_cards.size(); ++i) {
        m_cards[i]->setData(cards.at(static_cast<qsizetype>(i)), i == 0);
    }
    layOut(qRound(width));
    return {static_cast<double>(this->width()), static_cast<double>(height())};
}

void SuggestionStackView::setCount(std::size_t count) {
    while (m_cards.size() > count) {
        // Not deleted at once: the click that removes a card may come from its own button.
        m_cards.back()->hide();
        m_cards.back()->deleteLater();
        m_cards.pop_back();
    }
    while (m_cards.size() < count) {
        addCard();
    }
}

std::vector<SuggestionCard::Heights> SuggestionStackView::cardHeights(int width) {
    std::vector<SuggestionCard::Heights> heights;
    std::vector<int> texts;
    int available = tallestPanel() - cardGap * (static_cast<int>(m_cards.size()) - 1);
    for (SuggestionCard *card : m_cards) {
        heights.push_back(card->heightsFor(width));
        texts.push_back(heights.back().text);
        available -= heights.back().rest;
    }
    const int limit = std::max(leastTextHeight, fairLimit(texts, available));
    for (SuggestionCard::Heights &one : heights) {
        one.text = std::min(one.text, limit);
    }
    return heights;
}

void SuggestionStackView::layOut(int width) {
    const auto heights = cardHeights(width);
    int y = 0;
    for (std::size_t i = 0; i < m_cards.size(); ++i) {
        m_cards[i]->layOut(width, heights[i]);
        m_cards[i]->move(0, y);
        y += m_cards[i]->height() + cardGap;
    }
    resize(width, std::max(0, y - cardGap));
    publishShape();
}

void SuggestionStackView::publishShape() {
    QVariantList shape;
    for (const SuggestionCard *card : m_cards) {
        shape.append(QRectF(card->geometry()));
    }
    if (property(platform::panelShapeProperty) != QVariant(shape)) {
        setProperty(platform::panelShapeProperty, shape);
    }
}

} // namespace quillory::ui
