// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Setup/SetupWork.h"

#include "Quillory/Setup/ProgramExamination.h"

namespace quillory {

namespace {
QString outcomeOf(platform::RestartOutcome restart) {
    switch (restart) {
    case platform::RestartOutcome::restarted:
        return QStringLiteral(" was started again.");
    case platform::RestartOutcome::isStillEnding:
        return QStringLiteral(" is still ending. Start it yourself once it is gone.");
    case platform::RestartOutcome::failed:
        break;
    }
    return QStringLiteral(" could not be started again. Start it yourself.");
}
} // namespace

std::vector<Finding> SetupWork::look(const std::stop_token &stop) const {
    return diagnose(m_examination.examine(stop), examineProgram(stop));
}

QString SetupWork::mend(const Finding &finding, const std::stop_token &stop) const {
    switch (finding.remedy) {
    case Remedy::enableAccessibility:
        if (!m_mending.enableAccessibility(stop)) {
            return QStringLiteral("Accessibility could not be switched on.");
        }
        return isOnlyForLater(finding)
                   ? QStringLiteral("The desktop was asked to keep accessibility on.")
                   : QStringLiteral("Accessibility is on. Browsers that were running must be restarted once.");
    case Remedy::restart:
        return finding.title + outcomeOf(finding.application ? m_mending.restart(*finding.application, stop)
                                                             : platform::RestartOutcome::failed);
    case Remedy::startAtLogin:
        return m_mending.setStartsAtLogin(true) ? QStringLiteral("Quillory starts at your next login.")
                                                : QStringLiteral("The entry for the autostart could not be written.");
    case Remedy::start:
        return m_mending.start(stop) ? QStringLiteral("Quillory runs.")
                                     : QStringLiteral("Quillory could not be started. Start it yourself.");
    case Remedy::enterKey:
    case Remedy::none:
        break;
    }
    return {};
}

} // namespace quillory
