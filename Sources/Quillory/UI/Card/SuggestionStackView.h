// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Panel/SuggestionCardData.h"
#include "Quillory/UI/Card/SuggestionCard.h"

#include <QWidget>

#include <functional>
#include <vector>

namespace quillory::ui {

class CopyMenu;

/// The cards of one set of suggestions, one below the other.
class SuggestionStackView final : public QWidget {
  public:
    SuggestionStackView();

    /// Shows these cards. onAccept is called with the index of the card whose button was clicked.
    void setContent(const SuggestionCards &cards, std::function<void(int)> onAccept, std::function<void()> onDismiss);
    /// Resizes the stack to this width and to the height that its cards need. Where that exceeds maxHeight, the longest
    /// texts get less and scroll.
    void layOut(int width, int maxHeight);

  private:
    void addCard();
    [[nodiscard]] std::vector<SuggestionCard::Heights> cardHeights(int width, int maxHeight);
    void publishShape();

    std::vector<SuggestionCard *> m_cards;
    CopyMenu *m_copyMenu;
    std::function<void(int)> m_onAccept;
    std::function<void()> m_onDismiss;
};

} // namespace quillory::ui
