// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/SetupCommand.h"

#include "Quillory/Commands/DoctorCommand.h"
#include "Quillory/Model/ConnectionCheck.h"
#include "Quillory/Setup/SetupWork.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <set>
#include <string>

using namespace Qt::StringLiterals;

namespace quillory {

namespace {

/// Asks one question after the other. When the input ends, the answer to the rest is no.
class Dialogue {
  public:
    Dialogue(const SetupWork &work, const CommandServices &services, const CommandStreams &streams)
        : m_work(work), m_services(services), m_streams(streams) {}

    int run() {
        std::vector<Finding> findings = m_work.look({});
        writeFindings(m_streams.output, findings);
        m_streams.output << '\n';
        offer(findings);
        const bool hasNewKey = askForKey();
        const bool hasKey = hasNewKey || std::ranges::none_of(findings, [](const Finding &finding) {
                                return finding.remedy == Remedy::enterKey;
                            });
        if (hasKey && agrees(u"Try the key now?"_s, true)) {
            say(triedConnection(m_work.access().settings, m_work.access().client, {}));
        }
        do {
            findings = m_work.look({});
            m_streams.output << '\n';
            writeFindings(m_streams.output, findings);
        } while (std::ranges::any_of(findings, &Finding::needsReopening) &&
                 agrees(u"Check again, once you have closed and reopened what is named above?"_s, true));
        return canWork(findings) ? exitStatus::success : exitStatus::failure;
    }

  private:
    void offer(const std::vector<Finding> &findings) {
        std::set<QString> asked; // two findings may lead to the same question
        for (const Finding &finding : findings) {
            const auto offered = offerFor(finding);
            if (!offered || offered->question.isEmpty() || !asked.insert(offered->question).second) {
                continue;
            }
            if (agrees(offered->question, offered->isHarmless)) {
                say(m_work.repair(finding, {}));
            }
        }
    }

    bool askForKey() {
        for (;;) {
            m_streams.output << "API key (hidden while you type; press Enter to keep what is set): " << std::flush;
            const QString typed = m_services.readHidden ? m_services.readHidden() : line();
            if (typed.trimmed().isEmpty()) {
                return false;
            }
            const SavedKey saved = m_work.saveKey(typed, {});
            say(saved.sentence);
            if (saved.isSaved) {
                return true;
            }
        }
    }

    bool agrees(const QString &question, bool byDefault) {
        m_streams.output << question.toStdString() << (byDefault ? " [Y/n] " : " [y/N] ") << std::flush;
        const QString answer = line().trimmed().toLower();
        if (m_hasEnded) {
            m_streams.output << '\n';
            return false;
        }
        return answer.isEmpty() ? byDefault : answer.startsWith(u'y');
    }

    QString line() {
        std::string text;
        m_hasEnded = !std::getline(m_streams.input, text);
        return QString::fromStdString(text);
    }

    void say(const QString &sentence) { m_streams.output << sentence.toStdString() << '\n'; }

    const SetupWork &m_work;
    const CommandServices &m_services;
    const CommandStreams &m_streams;
    bool m_hasEnded = false;
};

int runSetup(const CommandArguments &given, const CommandServices &services, const CommandStreams &streams) {
    if (!given.has(u"terminal"_s)) {
        if (const auto status = services.setUpInWindow()) {
            return *status;
        }
    }
    const auto access = services.accessModel();
    const SetupWork work(*services.doctor, *access);
    return Dialogue(work, services, streams).run();
}

} // namespace

const Command &setupCommand() {
    static const Command command{.name = u"setup"_s,
                                 .forms = {{{}, u"set up what Quillory needs, and the API key"_s}},
                                 .options = {{u"terminal"_s, u"Ask in the terminal, even if there is a display."_s}},
                                 .run = runSetup};
    return command;
}

} // namespace quillory
