// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Panel/SuggestionHost.h"
#include "Quillory/UI/Card/SuggestionCard.h"

#include <QWidget>

#include <vector>

namespace quillory::ui {

class CopyMenu;

/// The cards of one set of suggestions, one below the other, drawn with Qt Widgets. Cards that look the same as before
/// are left alone; the ones that changed change in place. Where a screen is too low for all, the longest texts get less
/// and scroll.
class SuggestionStackView final : public QWidget, public SuggestionHost {
  public:
    SuggestionStackView();

    platform::Size setRootView(const SuggestionCards &cards, double width, std::function<void(int)> onAccept,
                               std::function<void()> onDismiss) override;
    [[nodiscard]] QObject *view() override { return this; }

  private:
    void setCount(std::size_t count);
    void addCard();
    void layOut(int width);
    [[nodiscard]] std::vector<SuggestionCard::Heights> cardHeights(int width);
    void publishShape();

    std::vector<SuggestionCard *> m_cards;
    CopyMenu *m_copyMenu;
    std::function<void(int)> m_onAccept;
    std::function<void()> m_onDismiss;
};

} // namespace quillory::ui
