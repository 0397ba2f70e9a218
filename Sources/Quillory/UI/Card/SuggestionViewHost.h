// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Panel/SuggestionHost.h"
#include "Quillory/UI/Card/SuggestionStackView.h"

namespace quillory::ui {

/// Draws the cards with Qt Widgets. Needs a QApplication.
class SuggestionViewHost final : public SuggestionHost {
  public:
    SuggestionViewHost();
    /// Cards that look the same as before are left alone; the ones that changed change in place.
    platform::Size setRootView(const SuggestionCards &cards, double width, std::function<void(int)> onAccept,
                               std::function<void()> onDismiss) override;
    [[nodiscard]] QObject *view() override { return &m_stack; }

  private:
    SuggestionStackView m_stack;
};

} // namespace quillory::ui
