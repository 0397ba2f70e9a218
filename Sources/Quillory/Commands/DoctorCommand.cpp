// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/DoctorCommand.h"

#include "Quillory/Setup/SetupWork.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

using namespace Qt::StringLiterals;

namespace quillory {

namespace {
using State = Finding::State;

/// Whether "--fix" may do it without asking. All other remedies change more than a switch.
bool isSafe(Remedy remedy) {
    return remedy == Remedy::enableAccessibility;
}

bool isToBeKept(const Finding &finding) {
    return isSafe(finding.remedy) && isOnlyForLater(finding);
}

/// Does what is safe, then examines everything again.
void fix(std::vector<Finding> &findings, const CommandServices &services, const SetupWork &work,
         const CommandStreams &streams) {
    const auto safe = std::ranges::count_if(findings, [](const Finding &f) { return isSafe(f.remedy); });
    if (safe == 0) {
        streams.errors << "Nothing needs fixing that can be fixed safely.\n";
        return;
    }
    const bool isOnNow = safe == std::ranges::count_if(findings, isToBeKept);
    const bool isDone = services.doctor->enableAccessibility({});
    findings = work.look({});
    if (!isDone) {
        streams.errors << "quillory: accessibility could not be switched on.\n";
    } else if (!isOnNow) {
        streams.errors << "Switched accessibility on. Close browsers that were running, and open them again.\n";
    } else {
        streams.errors << (std::ranges::none_of(findings, isToBeKept)
                               ? "Accessibility stays on at the next login.\n"
                               : "quillory: the setting that keeps accessibility on could not be changed.\n");
    }
}

const char *nameOf(State state) {
    switch (state) {
    case State::good:
        return "ok";
    case State::note:
        return "note";
    case State::problem:
        break;
    }
    return "PROBLEM";
}

void writeJSON(std::ostream &output, const std::vector<Finding> &findings) {
    nlohmann::json checks = nlohmann::json::array();
    for (const Finding &finding : findings) {
        checks.push_back({{"check", finding.check.toStdString()},
                          {"title", finding.title.toStdString()},
                          {"state", finding.state == State::problem ? "problem" : nameOf(finding.state)},
                          {"found", finding.found.toStdString()},
                          {"advice", finding.advice.toStdString()},
                          {"fixable", isSafe(finding.remedy)}});
    }
    output << nlohmann::json{{"canWork", canWork(findings)}, {"checks", std::move(checks)}}.dump(2) << '\n';
}

int runDoctor(const CommandArguments &given, const CommandServices &services, const CommandStreams &streams) {
    const auto access = services.accessModel();
    const SetupWork work(*services.doctor, *access);
    std::vector<Finding> findings = work.look({});
    if (given.has(u"fix"_s)) {
        fix(findings, services, work, streams);
    }
    given.has(u"json"_s) ? writeJSON(streams.output, findings) : writeFindings(streams.output, findings);
    return canWork(findings) ? exitStatus::success : exitStatus::failure;
}

int runAutostart(const CommandArguments &given, const CommandServices &services, const CommandStreams &streams) {
    const bool on = given.words() == QStringList{u"on"_s};
    if (!on && given.words() != QStringList{u"off"_s}) {
        return given.refuse();
    }
    if (!services.doctor->setStartsAtLogin(on)) {
        return complain(streams,
                        u"the entry for the desktop's autostart could not be "_s + (on ? u"written"_s : u"removed"_s),
                        exitStatus::failure);
    }
    streams.output << (on ? "Quillory starts at your next login.\n" : "Quillory no longer starts at login.\n");
    return exitStatus::success;
}

} // namespace

void writeFindings(std::ostream &output, const std::vector<Finding> &findings) {
    qsizetype width = 0;
    for (const Finding &finding : findings) {
        width = std::max(width, finding.title.size());
    }
    for (const Finding &finding : findings) {
        output << QString::fromLatin1(nameOf(finding.state)).leftJustified(9).toStdString()
               << finding.title.leftJustified(width + 2).toStdString() << finding.found.toStdString() << '\n';
        if (!finding.advice.isEmpty()) {
            output << std::string(static_cast<std::size_t>(9 + width + 2), ' ') << "-> " << finding.advice.toStdString()
                   << '\n';
        }
    }
    const auto problems = std::ranges::count(findings, State::problem, &Finding::state);
    if (problems == 0) {
        output << (isAtWork(findings) ? "\nQuillory is ready.\n" : "\nQuillory is ready to be started.\n");
    } else {
        output << "\nQuillory is not ready yet: " << problems << (problems == 1 ? " problem.\n" : " problems.\n");
    }
}

const Command &doctorCommand() {
    static const Command command{
        .name = u"doctor"_s,
        .forms = {{{}, u"check what Quillory needs and say what to do; --fix does what is safe"_s}},
        .options = {{u"fix"_s, u"First do what is safe, which is to switch accessibility on."_s},
                    {u"json"_s, u"Show the checks as JSON."_s}},
        .run = runDoctor};
    return command;
}

const Command &autostartCommand() {
    static const Command command{.name = u"autostart"_s,
                                 .forms = {{u"on|off"_s, u"start Quillory at every login, or no longer"_s}},
                                 .options = {},
                                 .mostWords = 1,
                                 .run = runAutostart};
    return command;
}

} // namespace quillory
