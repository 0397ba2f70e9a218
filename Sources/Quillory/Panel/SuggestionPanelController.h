// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Screens.h"
#include "Quillory/Panel/SuggestionCardData.h"
#include "Quillory/Panel/SuggestionHost.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace platform {
class EventTaps;
class MainQueue;
class PanelWindows;
} // namespace platform

namespace quillory {

/// Owns the floating panel: places it beside another application's text field, shows the cards that it is given, and
/// meanwhile turns Tab into accept and Esc into dismiss. Never takes the keyboard focus and never decides what to show.
/// Main thread only.
class SuggestionPanelController {
  public:
    /// Used for the panel and its keys. All of them outlive the controller.
    struct Services {
        platform::EventTaps &eventTaps;
        platform::MainQueue &mainQueue;
        platform::PanelWindows &panelWindows;
        platform::Screens &screens;
    };
    SuggestionPanelController(MakeSuggestionHost makeHost, const Services &services);
    ~SuggestionPanelController();

    /// Called when a card is to be accepted: Tab (through the main queue) or a click on its button.
    std::function<void(int)> onAcceptCard;
    /// Called when the cards are to be dismissed: Esc (through the main queue) or a click on a close button.
    std::function<void()> onDismiss;

    /// Shows cards for a field. The frame is the field's, in accessibility coordinates.
    void show(const SuggestionCards &cards, const platform::Rect &above, const platform::AXUIElement &element);
    /// Streams text into a card that is not complete.
    void updateCard(int index, const QString &text);
    void finishCard(int index, const QString &text, const std::optional<QString> &elapsedText);
    void failCard(int index, const QString &message);
    /// Hides the panel and forgets the cards and the field.
    void hide();
    /// Moves a visible panel with its field. Does nothing while it is hidden.
    void reposition(const platform::Rect &above);

    [[nodiscard]] bool isVisible() const;
    [[nodiscard]] const std::optional<platform::AXUIElement> &targetElement() const { return m_targetElement; }
    [[nodiscard]] const SuggestionCards &cards() const { return m_cards; }
    /// Whether a card is complete, not failed and not empty. False for an index without a card.
    [[nodiscard]] bool isCardAcceptable(qint64 index) const;
    [[nodiscard]] std::optional<int> firstCompleteIndex() const;

  private:
    struct Private;
    std::optional<platform::AXUIElement> m_targetElement;
    SuggestionCards m_cards;
    std::unique_ptr<Private> m_private;
};

/// The smallest distance between a panel and the edges of its screen's visible frame, in points.
inline constexpr double panelScreenMargin = 8;

/// The origin of a panel of this size beside a field. All in screen coordinates (points, y upwards).
/// screens: in the desktop's order, mainScreen: where to go when no screen holds the field's centre.
[[nodiscard]] platform::Point panelOrigin(const platform::Rect &field, platform::Size panel,
                                          const std::vector<platform::Screen> &screens,
                                          const std::optional<platform::Screen> &mainScreen);

} // namespace quillory
