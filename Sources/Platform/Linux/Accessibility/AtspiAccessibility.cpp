// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/AtspiAccessibility.h"

#include "Platform/Linux/Accessibility/AccessibilityCore.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

#include <future>

namespace platform::desktop {

namespace {
using namespace std::chrono_literals;
// How long the start waits to know whether the program is trusted.
constexpr auto firstAnswerWait = 200ms;
// At the start of a session the bus may be a moment late, and another window may offer the same.
constexpr auto promptDelay = 3s;

const QString switchedOff = QStringLiteral(
    "It reads the message box that you are typing in through this service, which is switched off now.\n\n"
    "It can be switched on for this session. Browsers and chat programs that are already running must be "
    "restarted once before Quillory can see their fields.");
const QString missing = QStringLiteral(
    "It reads the message box that you are typing in through this service, which does not answer in this session.\n\n"
    "It comes with the package at-spi2-core and is there after the next login.");

/// Says that accessibility is off, and offers to switch it on for the session; where there is no service to switch on
/// (enable is empty), says what is missing.
std::unique_ptr<QMessageBox> makePrompt(const std::function<void()> &enable) {
    auto box = std::make_unique<QMessageBox>(QMessageBox::Information, QStringLiteral("Quillory"),
                                             QStringLiteral("Quillory needs the desktop's accessibility service."));
    box->setModal(false);
    box->setInformativeText(enable ? switchedOff : missing);
    if (!enable) {
        box->addButton(QMessageBox::Close);
        return box;
    }
    auto *switchOn = box->addButton(QStringLiteral("Switch On"), QMessageBox::AcceptRole);
    box->addButton(QStringLiteral("Not Now"), QMessageBox::RejectRole);
    box->setDefaultButton(switchOn);
    QObject::connect(box.get(), &QMessageBox::accepted, box.get(), enable);
    return box;
}
} // namespace

AtspiAccessibility::AtspiAccessibility(MainQueue &mainQueue) : AtspiAccessibility(mainQueue, Options()) {}

AtspiAccessibility::AtspiAccessibility(MainQueue &mainQueue, Options options)
    : m_mainQueue(mainQueue), m_isOfferedElsewhere(options.isOfferedElsewhere),
      m_core(std::make_shared<atspi::AccessibilityCore>(std::move(options))) {
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
    m_prompt = makePrompt(enable);
    m_prompt->show();
    m_prompt->raise();
    m_prompt->activateWindow();
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
