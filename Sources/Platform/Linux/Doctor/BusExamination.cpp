// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/BusExamination.h"

#include "Platform/Linux/Accessibility/Bus/Questions.h"
#include "Platform/Linux/Applications/LinuxWorkspace.h"
#include "Platform/Linux/Doctor/PageSearch.h"

#include <QUrl>

namespace platform::desktop {

namespace {
using namespace atspi;
using namespace std::chrono_literals;
constexpr auto answerTime = 1s;
// The service may have to be started first.
constexpr auto startTime = 3s;
constexpr std::size_t maxApplications = 500;

constexpr const char *watcherName = "org.kde.StatusNotifierWatcher";

Deadline within(Clock::duration time) {
    return Clock::now() + time;
}

bool hasStatusNotifier(Connection &session) {
    const auto answer = session.call(
        calls::property({watcherName, "/StatusNotifierWatcher"}, watcherName, "IsStatusNotifierHostRegistered"),
        within(answerTime));
    return answer.as<bool>().value_or(false);
}

std::optional<std::string> accessibilityBus(Connection &session) {
    const auto address = session.call(calls::accessibilityBusAddress(true), within(startTime)).as<QString>();
    return address && !address->isEmpty() ? std::optional(address->toStdString()) : std::nullopt;
}

std::optional<bool> isEnabled(Connection &session) {
    return session.call(calls::isAccessibilityOn(), within(answerTime)).as<bool>();
}

/// An application's entry on the accessibility bus; null when it has none. A sandboxed application is on the bus
/// through a proxy, whose process is none of those listed.
const Handle *entryOf(const ApplicationFacts &application, const std::vector<Handle> &roots,
                      const std::vector<ApplicationFacts> &listed) {
    LinuxWorkspace workspace(nullptr);
    const auto samePid = std::ranges::find(roots, application.pid, &Handle::pid);
    if (samePid != roots.end()) {
        return &*samePid;
    }
    const auto sameProgram = std::ranges::find_if(roots, [&](const Handle &root) {
        const auto known = workspace.runningApplication(root.pid);
        return known && known->bundleIdentifier == application.bundleIdentifier &&
               std::ranges::find(listed, root.pid, &ApplicationFacts::pid) == listed.end();
    });
    return sameProgram == roots.end() ? nullptr : &*sameProgram;
}

void examineApplications(Connection &bus, std::vector<ApplicationFacts> &applications) {
    const auto listed = bus.call(calls::applications(), within(answerTime));
    const auto roots =
        bus.handles(listed.references(maxApplications).value_or(std::vector<ElementRef>()), within(answerTime));
    for (ApplicationFacts &application : applications) {
        const Handle *entry = entryOf(application, roots, applications);
        application.isOnBus = entry != nullptr;
        if (entry != nullptr) {
            application.tree = findPages(bus, entry->ref);
        }
    }
}

} // namespace

void examineBuses(DesktopFacts &facts, const std::stop_token &stop) {
    StopSignal ended;
    const std::stop_callback whenAsked(stop, [&ended] { ended.request(); });
    Connection session(sessionBusAddress(), ended);
    facts.hasSessionBus = session.call(calls::busId(), within(answerTime)).as<QString>().has_value();
    if (!facts.hasSessionBus) {
        return;
    }
    facts.hasStatusNotifier = hasStatusNotifier(session);
    const auto address = accessibilityBus(session);
    if (!address) {
        return;
    }
    facts.isAccessibilityEnabled = isEnabled(session);
    Connection bus(*address, ended);
    facts.hasAccessibilityBus = bus.isOpen();
    if (facts.hasAccessibilityBus) {
        examineApplications(bus, facts.applications);
    }
}

bool enableAccessibilityNow(const std::stop_token &stop) {
    StopSignal ended;
    const std::stop_callback whenAsked(stop, [&ended] { ended.request(); });
    Connection session(sessionBusAddress(), ended);
    session.call(calls::switchAccessibilityOn(), within(startTime));
    return isEnabled(session).value_or(false);
}

} // namespace platform::desktop
