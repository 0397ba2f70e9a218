// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Setup/SetupWork.h"

#include "Quillory/Setup/ProgramExamination.h"

#include <utility>

namespace quillory {

std::vector<Finding> SetupWork::look(const std::stop_token &stop) const {
    platform::DesktopFacts desktop = m_examination.examine(stop);
    ProgramFacts program = examineProgram(m_access, stop);
    const std::scoped_lock lock(m_last->mutex);
    m_last->desktop = std::move(desktop);
    m_last->program = std::move(program);
    return m_last->findings = diagnose(m_last->desktop, m_last->program);
}

std::optional<std::vector<Finding>> SetupWork::lookForChanges(const std::stop_token &stop) const {
    {
        const std::scoped_lock lock(m_last->mutex);
        if (!isWaitingForChat(m_last->findings)) {
            return std::nullopt;
        }
    }
    std::vector<platform::ApplicationFacts> applications = m_examination.examineApplications(stop);
    const std::scoped_lock lock(m_last->mutex);
    m_last->desktop.applications = std::move(applications);
    std::vector<Finding> findings = diagnose(m_last->desktop, m_last->program);
    if (findings == std::exchange(m_last->findings, findings)) {
        return std::nullopt;
    }
    return findings;
}

QString SetupWork::repair(const Finding &finding, const std::stop_token &stop) const {
    switch (finding.remedy) {
    case Remedy::enableAccessibility:
        if (!m_repair.enableAccessibility(stop)) {
            return QStringLiteral("Accessibility could not be switched on.");
        }
        return isOnlyForLater(finding)
                   ? QStringLiteral("The desktop is now set to keep accessibility on.")
                   : QStringLiteral("Accessibility is on. Close browsers that were running, and open them again.");
    case Remedy::startAtLogin:
        return m_repair.setStartsAtLogin(true) ? QStringLiteral("Quillory starts at your next login.")
                                               : QStringLiteral("The autostart entry could not be written.");
    case Remedy::start:
        return m_repair.start(stop) ? QStringLiteral("Quillory is running.")
                                    : QStringLiteral("Quillory did not start. Start it from the menu of applications.");
    case Remedy::enterKey:
    case Remedy::none:
        break;
    }
    return {};
}

} // namespace quillory
