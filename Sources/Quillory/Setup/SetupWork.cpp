// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Setup/SetupWork.h"

#include "Quillory/RewriteError.h"
#include "Quillory/Text.h"

#include <utility>

namespace quillory {

namespace {

void examineService(ProgramFacts &facts, const ModelAccess &access, const std::stop_token &stop) {
    constexpr std::chrono::seconds patience{8};
    const auto chosen = access.process.environment(QStringLiteral("QUILLORY_MODEL_SERVICE"));
    facts.isServiceChosen = chosen && !chosen->isEmpty();
    try {
        platform::URLRequest request;
        request.url = access.client.serviceURL();
        request.timeout = patience;
        facts.serviceHost = request.url.host();
        // Any HTTP answer will do: without a key, the service refuses the request.
        if (!access.session.data(request, stop).statusCode) {
            facts.serviceFault = facts.serviceHost + QStringLiteral(" does not answer with HTTP");
        }
    } catch (const RewriteError &error) {
        facts.serviceFault = error.description();
    } catch (const platform::URLError &error) {
        facts.serviceFault =
            facts.serviceHost + QStringLiteral(" cannot be reached: ") + QString::fromUtf8(error.what());
    } catch (const platform::CancellationError &) {
        facts.serviceFault = QStringLiteral("the check was stopped");
    }
}

ProgramFacts examineProgram(const ModelAccess &access, const std::stop_token &stop) {
    ProgramFacts facts;
    facts.version = QStringLiteral(QUILLORY_VERSION);
    const QString key = text::trimmed(access.settings.apiKey());
    facts.hasKey = !key.isEmpty();
    facts.isKeyKept = access.settings.isKeySet();
    // Such a key would never be sent.
    if (facts.hasKey && enteredKey(key).key != key) {
        facts.keyFault = QStringLiteral("the key contains a space, a line break or another character that no key has");
    }
    facts.areSuggestionsOn = access.settings.store().boolean(settingsKey::enabled);
    examineService(facts, access, stop);
    return facts;
}

} // namespace

std::vector<Finding> SetupWork::look(const std::stop_token &stop) const {
    platform::DesktopFacts desktop = m_doctor.examine(stop);
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
    std::vector<platform::ApplicationFacts> applications = m_doctor.examineApplications(stop);
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
        if (!m_doctor.enableAccessibility(stop)) {
            return QStringLiteral("Accessibility could not be switched on.");
        }
        return isOnlyForLater(finding)
                   ? QStringLiteral("The desktop is now set to keep accessibility on.")
                   : QStringLiteral("Accessibility is on. Close browsers that were running, and open them again.");
    case Remedy::startAtLogin:
        return m_doctor.setStartsAtLogin(true) ? QStringLiteral("Quillory starts at your next login.")
                                               : QStringLiteral("The autostart entry could not be written.");
    case Remedy::start:
        return m_doctor.start(stop) ? QStringLiteral("Quillory is running.")
                                    : QStringLiteral("Quillory did not start. Start it from the menu of applications.");
    case Remedy::enterKey:
    case Remedy::none:
        break;
    }
    return {};
}

} // namespace quillory
