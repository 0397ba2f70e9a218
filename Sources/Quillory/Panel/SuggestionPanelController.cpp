// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Panel/SuggestionPanelController.h"

#include "Platform/Keys.h"
#include "Platform/LifeToken.h"
#include "Platform/MainQueue.h"
#include "Platform/PanelWindow.h"
#include "Quillory/Field/AXText.h"
#include "Quillory/Records/FileLog.h"

#include <algorithm>

namespace quillory {

using platform::TapEvent;
using platform::TapEventType;
using platform::TapVerdict;

namespace {

constexpr double minWidth = 360;
constexpr double maxWidth = 620;
constexpr double gapToField = 10;
constexpr double rise = 8;
constexpr std::chrono::milliseconds fadeIn{180};

bool isAcceptable(const SuggestionCardData &card) {
    return card.isComplete && !card.failed && card.text && !card.text->isEmpty();
}

platform::Rect visibleFrameAround(platform::Point point, const std::vector<platform::Screen> &screens,
                                  const std::optional<platform::Screen> &mainScreen) {
    const auto found = std::find_if(screens.begin(), screens.end(),
                                    [&](const platform::Screen &screen) { return screen.frame.contains(point); });
    if (found != screens.end()) {
        return found->visibleFrame;
    }
    return mainScreen ? mainScreen->visibleFrame : platform::Rect{};
}

} // namespace

struct SuggestionPanelController::Private {
    Private(SuggestionPanelController &controller, MakeSuggestionHost make, const Services &given)
        : owner(controller), makeHost(std::move(make)), services(given) {}

    void render();
    void place();
    void riseIntoPlace();
    void change(int index, const std::function<bool(SuggestionCardData &)> &edit);
    void armTap();
    void armAgain();
    void loseTap();
    TapVerdict handle(const TapEvent &event);
    TapVerdict handleKey(platform::KeyCode key);
    void post(std::function<void()> action);
    void callAccept(int index) const;
    void callDismiss() const;

    SuggestionPanelController &owner;
    MakeSuggestionHost makeHost;
    Services services;
    // Declared before the window that shows its view, so that the window is destroyed first.
    std::unique_ptr<SuggestionHost> hosting;
    std::unique_ptr<platform::PanelWindow> panel;
    platform::Rect lastAXFrame;
    double width = 420;
    std::unique_ptr<platform::EventTap> eventTap;
    platform::LifeToken life;
};

SuggestionPanelController::SuggestionPanelController(MakeSuggestionHost makeHost, const Services &services)
    : m_private(std::make_unique<Private>(*this, std::move(makeHost), services)) {}

SuggestionPanelController::~SuggestionPanelController() = default;

void SuggestionPanelController::show(const SuggestionCards &cards, const platform::Rect &above,
                                     const platform::AXUIElement &element) {
    m_cards = cards;
    m_targetElement = element;
    m_private->lastAXFrame = above;
    m_private->width = std::min(maxWidth, std::max(minWidth, above.width));
    m_private->render();
    if (isVisible()) {
        m_private->panel->orderFrontRegardless();
    } else {
        FileLog::log(QStringLiteral("panel visible (%1 cards)").arg(cards.size()));
        m_private->riseIntoPlace();
    }
    m_private->armTap();
}

void SuggestionPanelController::updateCard(int index, const QString &text) {
    m_private->change(index, [&](SuggestionCardData &card) {
        if (card.isComplete) {
            return false;
        }
        card.text = text;
        return true;
    });
}

void SuggestionPanelController::finishCard(int index, const QString &text, const std::optional<QString> &elapsedText) {
    m_private->change(index, [&](SuggestionCardData &card) {
        card.text = text;
        card.isComplete = true;
        card.elapsedText = elapsedText;
        return true;
    });
}

void SuggestionPanelController::failCard(int index, const QString &message) {
    m_private->change(index, [&](SuggestionCardData &card) {
        card.text = message;
        card.failed = true;
        card.isComplete = false;
        return true;
    });
}

void SuggestionPanelController::hide() {
    if (m_private->panel) {
        m_private->panel->orderOut();
    }
    m_cards.clear();
    m_targetElement.reset();
    if (m_private->eventTap) {
        m_private->eventTap->setEnabled(false);
    }
}

void SuggestionPanelController::reposition(const platform::Rect &above) {
    if (!isVisible()) {
        return;
    }
    m_private->lastAXFrame = above;
    m_private->place();
}

bool SuggestionPanelController::isVisible() const {
    return m_private->panel && m_private->panel->isVisible();
}

bool SuggestionPanelController::isCardAcceptable(qint64 index) const {
    return index >= 0 && index < m_cards.size() && isAcceptable(m_cards.at(index));
}

std::optional<int> SuggestionPanelController::firstCompleteIndex() const {
    const auto found = std::find_if(m_cards.begin(), m_cards.end(), isAcceptable);
    return found == m_cards.end() ? std::nullopt : std::optional(static_cast<int>(found - m_cards.begin()));
}

void SuggestionPanelController::Private::render() {
    if (!hosting) {
        hosting = makeHost();
    }
    if (!panel) {
        panel = services.panelWindows.create();
    }
    const platform::Size size =
        hosting->setRootView(owner.m_cards, width, life.whileAlive([this](int index) { callAccept(index); }),
                             life.whileAlive([this] { callDismiss(); }));
    panel->setContentView(hosting->view());
    panel->setContentSize(size);
    place();
}

void SuggestionPanelController::Private::place() {
    const auto screens = services.screens.screens();
    panel->setFrameOrigin(panelOrigin(AXText::cocoaRect(lastAXFrame, screens), panel->frame().size(), screens,
                                      services.screens.mainScreen()));
}

void SuggestionPanelController::Private::riseIntoPlace() {
    const platform::Point place = panel->frame().origin();
    panel->setFrameOrigin({place.x, place.y - rise});
    panel->setAlpha(0);
    panel->orderFrontRegardless();
    panel->animate(place, 1, fadeIn);
}

void SuggestionPanelController::Private::change(int index, const std::function<bool(SuggestionCardData &)> &edit) {
    if (!owner.isVisible() || index < 0 || index >= owner.m_cards.size()) {
        return;
    }
    if (edit(owner.m_cards[index])) {
        render();
    }
}

void SuggestionPanelController::Private::armTap() {
    if (!eventTap) {
        eventTap = services.eventTaps.create([this](const TapEvent &event) { return handle(event); });
    }
    if (!eventTap || !eventTap->setEnabled(true)) {
        loseTap();
    }
}

void SuggestionPanelController::Private::armAgain() {
    if (owner.isVisible() && eventTap && !eventTap->setEnabled(true)) {
        loseTap();
    }
}

// The panel works without the keys, and the next show tries again.
void SuggestionPanelController::Private::loseTap() {
    eventTap.reset();
    FileLog::log(QStringLiteral("could not create event tap (Tab/Esc shortcuts unavailable)"));
}

TapVerdict SuggestionPanelController::Private::handle(const TapEvent &event) {
    if (!owner.isVisible()) {
        return TapVerdict::pass;
    }
    if (event.type != TapEventType::keyDown) {
        if (eventTap && !eventTap->setEnabled(true)) {
            // Must not be destroyed here, inside its own callback.
            post([this] { armAgain(); });
        }
        return TapVerdict::pass;
    }
    return (event.flags & platform::eventFlag::all) == 0 ? handleKey(event.key) : TapVerdict::pass;
}

TapVerdict SuggestionPanelController::Private::handleKey(platform::KeyCode key) {
    if (key == platform::keyCode::escape) {
        post([this] { callDismiss(); });
        return TapVerdict::swallow;
    }
    const auto index = key == platform::keyCode::tab ? owner.firstCompleteIndex() : std::nullopt;
    if (!index) {
        return TapVerdict::pass;
    }
    post([this, index = *index] { callAccept(index); });
    return TapVerdict::swallow;
}

void SuggestionPanelController::Private::post(std::function<void()> action) {
    services.mainQueue.post(life.whileAlive(std::move(action)));
}

void SuggestionPanelController::Private::callAccept(int index) const {
    if (owner.onAcceptCard) {
        owner.onAcceptCard(index);
    }
}

void SuggestionPanelController::Private::callDismiss() const {
    if (owner.onDismiss) {
        owner.onDismiss();
    }
}

platform::Point panelOrigin(const platform::Rect &field, platform::Size panel,
                            const std::vector<platform::Screen> &screens,
                            const std::optional<platform::Screen> &mainScreen) {
    const platform::Rect visible = visibleFrameAround({field.midX(), field.midY()}, screens, mainScreen);
    double y = field.maxY() + gapToField;
    if (visible.maxY() - panelScreenMargin < y + panel.height) {
        y = field.minY() - gapToField - panel.height;
    }
    const double left = visible.minX() + panelScreenMargin;
    const double right = std::max(left, visible.maxX() - panel.width - panelScreenMargin);
    // The bound stands first so that a coordinate that is no number yields to it.
    const double x = std::min(right, std::max(left, field.minX()));
    return {x, std::max(visible.minY() + panelScreenMargin, y)};
}

} // namespace quillory
