// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/LifeToken.h"
#include "Platform/Linux/Applications/DesktopWindows.h"
#include "Platform/MainQueue.h"

#include <functional>
#include <string>

class QMessageBox;

namespace platform::desktop {

namespace atspi {
class AccessibilityCore;
} // namespace atspi

/// The accessibility interface on the desktop's accessibility bus. Made, used and destroyed on the main thread; a
/// thread of its own talks with other processes.
class AtspiAccessibility final : public Accessibility {
  public:
    struct Options {
        /// Turns a rectangle of the screen's pixels into points, from the top left of the primary monitor.
        std::function<Rect(const Rect &)> inPoints = [](const Rect &pixels) { return pixels; };
        /// Which window is active by the desktop's word; absent where it names none. Asked on the main thread whenever
        /// the focused element is.
        std::function<std::optional<ActiveWindow>()> activeWindow = [] { return std::nullopt; };
        /// Whether another window offers to switch the service on, so that the prompt need not.
        std::function<bool()> isOfferedElsewhere = [] { return false; };
        /// Where the session bus is; by default where the environment says.
        std::string sessionBusAddress;
        /// The process whose elements are never asked anything; by default this one. For tests, whose applications
        /// live in the same process.
        qint32 ownPid = 0;
    };

    /// Waits up to a fifth of a second to learn whether the program is trusted.
    explicit AtspiAccessibility(MainQueue &mainQueue);
    AtspiAccessibility(MainQueue &mainQueue, Options options);
    ~AtspiAccessibility() override;

    [[nodiscard]] bool isProcessTrusted() override;
    bool isProcessTrustedWithPrompt() override;
    /// A dialog that offers to switch accessibility on.
    void showSettings() override;
    [[nodiscard]] AXUIElement createSystemWide() override;
    [[nodiscard]] AXUIElement createApplication(qint32 pid) override;

    /// What was sent on the accessibility bus so far, for measurements. Waits for the reader.
    struct Traffic {
        std::uint64_t messages = 0;
        std::uint64_t roundTrips = 0;
    };
    [[nodiscard]] Traffic traffic();

  private:
    MainQueue &m_mainQueue;
    std::function<bool()> m_isOfferedElsewhere;
    std::shared_ptr<atspi::AccessibilityCore> m_core;
    std::unique_ptr<QMessageBox> m_prompt;
    int m_timesPrompted = 0;
    LifeToken m_life;
};

} // namespace platform::desktop
