// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/LinuxExamination.h"

#include "Platform/Linux/Doctor/Autostart.h"
#include "Platform/Linux/Doctor/BusExamination.h"
#include "Platform/Linux/Doctor/DesktopSettings.h"
#include "Platform/Linux/Doctor/RunningBrowsers.h"
#include "Platform/Linux/Doctor/X11Examination.h"

#include <QSysInfo>

#include <curl/curlver.h>

namespace platform::desktop {

namespace {

SessionType sessionType() {
    const QByteArray type = qgetenv("XDG_SESSION_TYPE").toLower();
    if (type == "wayland" || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        return SessionType::wayland;
    }
    return type == "x11" || !qEnvironmentVariableIsEmpty("DISPLAY") ? SessionType::x11 : SessionType::unknown;
}

QStringList versions() {
    return {QStringLiteral("Qt ") + QLatin1StringView(qVersion()), QStringLiteral("libcurl " LIBCURL_VERSION),
            QSysInfo::prettyProductName(), QSysInfo::kernelType() + u' ' + QSysInfo::kernelVersion()};
}

} // namespace

DesktopFacts LinuxExamination::examine(const std::stop_token &stop) {
    DesktopFacts facts;
    facts.session = sessionType();
    facts.desktopName = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    examineX11(facts);
    facts.applications = runningApplications(processesWithWindows(), facts.session);
    examineBuses(facts, stop);
    if (stop.stop_requested()) {
        return facts; // asking GSettings starts another program
    }
    facts.isAccessibilityKept = desktopSettings::isAccessibilityKept();
    facts.startsAtLogin = autostart::isOn();
    facts.versions = versions();
    return facts;
}

std::vector<ApplicationFacts> LinuxExamination::examineApplications(const std::stop_token &stop) {
    DesktopFacts facts;
    facts.applications = runningApplications(processesWithWindows(), sessionType());
    examineBuses(facts, stop);
    return std::move(facts.applications);
}

} // namespace platform::desktop
