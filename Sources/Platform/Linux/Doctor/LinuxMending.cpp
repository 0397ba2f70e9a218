// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/LinuxMending.h"

#include "Platform/Linux/Doctor/Autostart.h"
#include "Platform/Linux/Doctor/BusExamination.h"
#include "Platform/Linux/Doctor/DesktopSettings.h"
#include "Platform/Linux/Doctor/OwnProgram.h"
#include "Platform/Linux/Doctor/ProgramRestart.h"
#include "Platform/Linux/Doctor/X11Examination.h"

#include <QProcess>

#include <thread>

namespace platform::desktop {

bool LinuxMending::enableAccessibility(const std::stop_token &stop) {
    desktopSettings::keepAccessibility(); // not every desktop has it
    return enableAccessibilityNow(stop);
}

bool LinuxMending::setStartsAtLogin(bool starts) {
    return autostart::set(starts);
}

bool LinuxMending::start(const std::stop_token &stop) {
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

RestartOutcome LinuxMending::restart(const ApplicationFacts &application, const std::stop_token &stop) {
    return restartProgram(application, stop);
}

} // namespace platform::desktop
