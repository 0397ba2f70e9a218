// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/CommandLine.h"

#include "Quillory/Commands/DefaultsCommand.h"
#include "Quillory/Commands/DoctorCommand.h"
#include "Quillory/Commands/InspectCommand.h"
#include "Quillory/Commands/RewriteCommand.h"
#include "Quillory/Commands/SetupCommand.h"
#include "Quillory/Commands/StatsCommand.h"

#include <algorithm>
#include <array>
#include <ostream>

using namespace Qt::StringLiterals;

namespace quillory {

namespace {
constexpr auto helpOnValues = R"(
A VALUE of - is read from standard input. The API key is only taken from there, because other programs can see
arguments. Use quillory setup, or:
  quillory defaults write openRouterAPIKey - < FILE

Settings:
)";

constexpr auto helpEnding = R"(
Environment:
  OPENROUTER_API_KEY       the API key, when the settings have none
  QUILLORY_MODEL_SERVICE   address of another service with the same protocol; only its scheme, host and port are
                           used, the path is always /api/v1/chat/completions
  QUILLORY_UPDATE_FEED     address of another server that announces versions; the path is always /version.json

Exit status: 0 success, 1 failure or nothing to show, 2 wrong arguments.
)";

std::array<const Command *, 7> allCommands() {
    return {&defaultsCommand(), &setupCommand(),   &doctorCommand(), &autostartCommand(),
            &inspectCommand(),  &rewriteCommand(), &statsCommand()};
}

/// A usage line with its meaning beside it, or below where the line is too long.
QString helpLine(const QString &usage, const QString &meaning = {}) {
    constexpr int width = 36;
    if (meaning.isEmpty()) {
        return u"  %1\n"_s.arg(usage);
    }
    const QString gap = usage.size() < width ? QString() : u'\n' + QString(width + 2, u' ');
    return u"  %1%2%3\n"_s.arg(usage.leftJustified(gap.isEmpty() ? width : 0), gap, meaning);
}

QString help() {
    QString text = u"Quillory suggests a better wording while you write to customers in WhatsApp.\n\nUsage:\n"_s +
                   helpLine(u"quillory"_s, u"start Quillory"_s);
    for (const Command *command : allCommands()) {
        const QStringList usage = usageOf(*command);
        for (qsizetype i = 0; i < usage.size(); ++i) {
            text += helpLine(usage[i], command->forms[i].meaning);
        }
    }
    return text + helpLine(u"quillory COMMAND --help"_s, u"show the arguments of a command"_s) +
           helpLine(u"quillory --version"_s) + helpLine(u"quillory --help"_s) + QString::fromLatin1(helpOnValues) +
           describeSettings() + QString::fromLatin1(helpEnding);
}

/// Qt's own options and those of session managers have one dash; ours have two, except for -h and -v.
bool isForQt(const QString &argument) {
    return argument.startsWith(u'-') && !argument.startsWith(u"--") && argument != u"-h"_s && argument != u"-v"_s;
}

int refuse(const CommandStreams &streams, const QString &mistake) {
    return complain(streams, mistake + u"; see quillory --help"_s, exitStatus::misuse);
}
} // namespace

std::optional<int> runCommandLine(const QStringList &arguments, const CommandServices &services,
                                  const CommandStreams &streams) {
    if (arguments.isEmpty() || isForQt(arguments.constFirst())) {
        return std::nullopt;
    }
    QCommandLineParser parser; // what follows the command is for the command itself
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    const QCommandLineOption version(QStringList{u"v"_s, u"version"_s});
    const QCommandLineOption askForHelp(QStringList{u"h"_s, u"help"_s});
    parser.addOptions({version, askForHelp});
    if (!parser.parse(QStringList{u"quillory"_s} + arguments)) {
        return refuse(streams, mistakeIn(parser));
    }
    if (parser.isSet(version)) {
        streams.output << "quillory " << QUILLORY_VERSION << '\n';
        return exitStatus::success;
    }
    if (parser.isSet(askForHelp)) {
        streams.output << help().toStdString();
        return exitStatus::success;
    }
    const QStringList words = parser.positionalArguments();
    const auto commands = allCommands();
    const auto *const found = std::ranges::find(commands, words.value(0), &Command::name);
    if (found == commands.end()) {
        return refuse(streams, u"unknown command \"%1\""_s.arg(words.value(0)));
    }
    const CommandArguments given(**found, words.mid(1), streams);
    return given.status() ? *given.status() : (*found)->run(given, services, streams);
}

} // namespace quillory
