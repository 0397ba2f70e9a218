// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "SimulatedDesktop/SimulatedPanel.h"

#include <utility>

namespace quillory::test {

namespace {

class SimulatedPanelWindow final : public platform::PanelWindow {
  public:
    explicit SimulatedPanelWindow(SimulatedPanelWindows &desktop) : m_desktop(desktop) {}
    ~SimulatedPanelWindow() override { m_desktop.visible = false; }
    SimulatedPanelWindow(const SimulatedPanelWindow &) = delete;
    SimulatedPanelWindow &operator=(const SimulatedPanelWindow &) = delete;

    void setContentView(QObject *view) override { m_desktop.content = view; }
    void setContentSize(platform::Size size) override {
        m_desktop.frame.width = size.width;
        m_desktop.frame.height = size.height;
    }
    void setFrameOrigin(platform::Point origin) override {
        m_desktop.frame.x = origin.x;
        m_desktop.frame.y = origin.y;
    }
    [[nodiscard]] platform::Rect frame() const override { return m_desktop.frame; }
    void setAlpha(double alpha) override { m_desktop.alpha = alpha; }
    void orderFrontRegardless() override {
        m_desktop.visible = true;
        ++m_desktop.raised;
    }
    void orderOut() override { m_desktop.visible = false; }
    [[nodiscard]] bool isVisible() const override { return m_desktop.visible; }
    void animate(platform::Point origin, double alpha, std::chrono::milliseconds duration) override {
        m_desktop.animations.push_back({m_desktop.frame.origin(), origin, m_desktop.alpha, alpha, duration});
        setFrameOrigin(origin);
        setAlpha(alpha);
    }

  private:
    SimulatedPanelWindows &m_desktop;
};

} // namespace

std::unique_ptr<platform::PanelWindow> SimulatedPanelWindows::create() {
    ++made;
    return std::make_unique<SimulatedPanelWindow>(*this);
}

class SimulatedCards::Host final : public SuggestionHost {
  public:
    explicit Host(SimulatedCards &cards) : m_cards(cards) {}
    platform::Size setRootView(const SuggestionCards &cards, double width, std::function<void(int)> onAccept,
                               std::function<void()> onDismiss) override {
        m_cards.shown = cards;
        m_cards.width = width;
        m_cards.m_onAccept = std::move(onAccept);
        m_cards.m_onDismiss = std::move(onDismiss);
        ++m_cards.renders;
        return {width, m_cards.height};
    }
    [[nodiscard]] QObject *view() override { return &m_view; }

  private:
    SimulatedCards &m_cards;
    QObject m_view;
};

MakeSuggestionHost SimulatedCards::maker() {
    return [this] { return std::make_unique<Host>(*this); };
}

} // namespace quillory::test
