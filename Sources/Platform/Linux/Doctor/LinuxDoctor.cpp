// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/LinuxDoctor.h"

#include "Platform/Linux/Doctor/Autostart.h"
#include "Platform/Linux/Doctor/BusExamination.h"
#include "Platform/Linux/Doctor/RunningBrowsers.h"
#include "Platform/Linux/Process/SingleInstance.h"
#include "Platform/Linux/X11/X11Examination.h"

#include <QProcess>
#include <QSysInfo>

#include <curl/curlver.h>

#include <thread>

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

/// Runs gsettings with this verb on the setting that switches accessibility on at every login. Absent when gsettings is
/// not installed, as on some desktops, fails, or takes too long.
std::optional<QByteArray> askSettings(const QString &verb, const QStringList &value = {}) {
    constexpr int patience = 3000;
    QProcess tool;
    tool.setStandardErrorFile(QProcess::nullDevice());
    tool.start(QStringLiteral("gsettings"), QStringList{verb, QStringLiteral("org.gnome.desktop.interface"),
                                                        QStringLiteral("toolkit-accessibility")} +
                                                value);
    if (!tool.waitForFinished(patience) || tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0) {
        return std::nullopt;
    }
    return tool.readAllStandardOutput().trimmed();
}

} // namespace

DesktopFacts LinuxDoctor::examine(const std::stop_token &stop) {
    DesktopFacts facts;
    facts.session = sessionType();
    facts.desktopName = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    examineX11(facts);
    if (facts.hasDisplay) {
        facts.isRunning = SingleInstance::isThere();
    }
    facts.applications = runningApplications(processesWithWindows(), facts.session);
    examineBuses(facts, stop);
    if (stop.stop_requested()) {
        return facts; // asking GSettings starts another program
    }
    if (const auto isKept = askSettings(QStringLiteral("get"))) {
        facts.isAccessibilityKept = *isKept == "true";
    }
    facts.startsAtLogin = autostart::isOn();
    facts.versions = versions();
    return facts;
}

std::vector<ApplicationFacts> LinuxDoctor::examineApplications(const std::stop_token &stop) {
    DesktopFacts facts;
    facts.applications = runningApplications(processesWithWindows(), sessionType());
    examineBuses(facts, stop);
    return std::move(facts.applications);
}

bool LinuxDoctor::enableAccessibility(const std::stop_token &stop) {
    askSettings(QStringLiteral("set"), {QStringLiteral("true")});
    return enableAccessibilityNow(stop);
}

bool LinuxDoctor::setStartsAtLogin(bool starts) {
    return autostart::set(starts);
}

bool LinuxDoctor::start(const std::stop_token &stop) {
    using namespace std::chrono_literals;
    constexpr auto patience = 10s;
    constexpr auto pause = 50ms;
    if (!QProcess::startDetached(autostart::program(), {})) {
        return false;
    }
    const auto giveUp = std::chrono::steady_clock::now() + patience;
    while (!SingleInstance::isThere() && std::chrono::steady_clock::now() < giveUp && !stop.stop_requested()) {
        std::this_thread::sleep_for(pause);
    }
    return SingleInstance::isThere();
}

} // namespace platform::desktop
