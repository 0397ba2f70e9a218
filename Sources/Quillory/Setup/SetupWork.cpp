// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Setup/SetupWork.h"

#include "Quillory/Setup/ProgramExamination.h"

namespace quillory {

std::vector<Finding> SetupWork::look(const std::stop_token &stop) const {
    return diagnose(m_examination.examine(stop), examineProgram(stop));
}

QString SetupWork::repair(const Finding &finding, const std::stop_token &stop) const {
    switch (finding.remedy) {
    case Remedy::enableAccessibility:
        if (!m_repair.enableAccessibility(stop)) {
            return QStringLiteral("Accessibility could not be switched on.");
        }
        return isOnlyForLater(finding)
                   ? QStringLiteral("The desktop was asked to keep accessibility on.")
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
