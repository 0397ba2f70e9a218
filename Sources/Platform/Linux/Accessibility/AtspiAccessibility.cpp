// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/AtspiAccessibility.h"

#include "Platform/Linux/Accessibility/AccessibilityCore.h"
#include "Platform/Linux/Accessibility/TrustDialog.h"

#include <QCoreApplication>

#include <future>

namespace platform::desktop {

namespace {
using namespace std::chrono_literals;
// How long the start waits to know whether the program is trusted.
constexpr auto firstAnswerWait = 200ms;
// At the start of a session the bus may be a moment late, and another window may offer the same.
constexpr auto promptDelay = 3s;
} // namespace

AtspiAccessibility::AtspiAccessibility(MainQueue &mainQueue) : AtspiAccessibility(mainQueue, Options()) {}

AtspiAccessibility::AtspiAccessibility(MainQueue &mainQueue, Options options)
    : m_mainQueue(mainQueue),
      m_core(std::make_shared<atspi::AccessibilityCore>(
          options.sessionBusAddress.empty() ? atspi::sessionBusAddress() : options.sessionBusAddress,
          options.ownPid != 0 ? options.ownPid : static_cast<qint32>(QCoreApplication::applicationPid()),
          std::move(options.inPoints), std::move(options.activeWindow))),
      m_isOfferedElsewhere(std::move(options.isOfferedElsewhere)) {
    m_core->reader().ask(firstAnswerWait, [](atspi::Session &session) {
        session.process();
        return true;
    });
}

AtspiAccessibility::~AtspiAccessibility() = default;

bool AtspiAccessibility::isProcessTrusted() {
    return m_core->reader().board().isTrusted;
}

bool AtspiAccessibility::isProcessTrustedWithPrompt() {
    const bool isTrusted = isProcessTrusted();
    if (!isTrusted) {
        m_mainQueue.postAfter(promptDelay, m_life.whileAlive([this, shownBefore = m_timesPrompted] {
            if (!isProcessTrusted() && m_timesPrompted == shownBefore && !m_isOfferedElsewhere()) {
                showSettings();
            }
        }));
    }
    return isTrusted;
}

void AtspiAccessibility::showSettings() {
    ++m_timesPrompted;
    std::function<void()> enable;
    if (m_core->reader().board().hasBus) {
        enable = [this] { m_core->reader().post([](atspi::Session &session) { session.enable(); }); };
    }
    // Made anew each time, since the service may have come or gone.
    m_prompt = std::make_unique<atspi::TrustDialog>(std::move(enable));
    m_prompt->show();
}

AXUIElement AtspiAccessibility::createSystemWide() {
    return m_core->desktop();
}

AXUIElement AtspiAccessibility::createApplication(qint32 pid) {
    return m_core->application(pid);
}

AtspiAccessibility::Traffic AtspiAccessibility::traffic() {
    // Not among the waits that the budget is for.
    const auto counted = std::make_shared<std::promise<Traffic>>();
    m_core->reader().post([counted](atspi::Session &session) {
        const auto *bus = session.connection();
        counted->set_value(bus != nullptr ? Traffic{bus->counters().messages, bus->counters().roundTrips} : Traffic{});
    });
    return counted->get_future().get();
}

} // namespace platform::desktop
