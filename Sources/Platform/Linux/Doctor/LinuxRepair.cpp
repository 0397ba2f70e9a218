// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/LinuxRepair.h"

#include "Platform/Linux/Doctor/Autostart.h"
#include "Platform/Linux/Doctor/BusExamination.h"
#include "Platform/Linux/Doctor/DesktopSettings.h"
#include "Platform/Linux/Doctor/OwnProgram.h"
#include "Platform/Linux/Doctor/X11Examination.h"

#include <QProcess>

#include <thread>

namespace platform::desktop {

bool LinuxRepair::enableAccessibility(const std::stop_token &stop) {
    desktopSettings::keepAccessibility(); // not every desktop has this setting
    return enableAccessibilityNow(stop);
}

bool LinuxRepair::setStartsAtLogin(bool starts) {
    return autostart::set(starts);
}

bool LinuxRepair::start(const std::stop_token &stop) {
    using namespace std::chrono_literals;
    constexpr auto patience = 10s;
    constexpr auto pause = 50ms;
    if (!QProcess::startDetached(ownProgram::path(), {})) {
        return false;
    }
    const auto giveUp = std::chrono::steady_clock::now() + patience;
    while (!isProgramRunning() && std::chrono::steady_clock::now() < giveUp && !stop.stop_requested()) {
        std::this_thread::sleep_for(pause);
    }
    return isProgramRunning();
}

} // namespace platform::desktop
