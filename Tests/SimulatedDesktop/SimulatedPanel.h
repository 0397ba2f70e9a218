// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/PanelWindow.h"
#include "Quillory/SuggestionHost.h"

#include <QObject>

#include <optional>

namespace quillory::test {

/// The one panel window of a simulated desktop, as its user sees it. Animations end at once and are remembered.
class SimulatedPanelWindows final : public platform::PanelWindows {
  public:
    struct Animation {
        platform::Point from;
        platform::Point to;
        double fromAlpha = 0;
        double toAlpha = 0;
        std::chrono::milliseconds duration{};
        friend bool operator==(const Animation &, const Animation &) = default;
    };

    int made = 0;
    bool visible = false;
    platform::Rect frame;
    double alpha = 1;
    QObject *content = nullptr;
    /// How often it was put above the other windows.
    int raised = 0;
    std::vector<Animation> animations;

    [[nodiscard]] std::unique_ptr<platform::PanelWindow> create() override;
};

/// The cards as a test's user sees and clicks them. Makes hosts that must not outlive it.
class SimulatedCards {
  public:
    SuggestionCards shown;
    double width = 0;
    int renders = 0;
    /// The height of what is shown, in points.
    double height = 120;

    void clickAccept(int index) { m_onAccept(index); }
    void clickDismiss() { m_onDismiss(); }
    /// To be handed to whatever makes the cards' view.
    [[nodiscard]] MakeSuggestionHost maker();

  private:
    class Host;
    std::function<void(int)> m_onAccept;
    std::function<void()> m_onDismiss;
};

} // namespace quillory::test
