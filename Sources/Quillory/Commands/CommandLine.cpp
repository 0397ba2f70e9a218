// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/CommandLine.h"

#include "Quillory/Commands/DefaultsCommand.h"
#include "Quillory/Commands/DoctorCommand.h"
#include "Quillory/Commands/InspectCommand.h"
#include "Quillory/Commands/RewriteCommand.h"
#include "Quillory/Commands/SetupCommand.h"
#include "Quillory/Commands/StatsCommand.h"
#include "Quillory/Records/ChoiceStats.h"

#include <algorithm>
#include <ostream>
#include <vector>

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

struct NamedCommand {
    const CommandSyntax &syntax;
    std::function<int(const QStringList &, const CommandServices &, const CommandStreams &)> run;
};

const std::vector<NamedCommand> &allCommands() {
    static const std::vector<NamedCommand> commands{
        {defaultsSyntax(),
         [](const QStringList &arguments, const CommandServices &services, const CommandStreams &streams) {
             return runDefaultsCommand(arguments, services.openSettings(), streams);
         }},
        {setupSyntax(), runSetupCommand},
        {doctorSyntax(), runDoctorCommand},
        {autostartSyntax(), runAutostartCommand},
        {inspectSyntax(), runInspectCommand},
        {rewriteSyntax(),
         [](const QStringList &arguments, const CommandServices &services, const CommandStreams &streams) {
             return runRewriteCommand(arguments, *services.accessModel(), streams);
         }},
        {statsSyntax(),
         [](const QStringList &arguments, const CommandServices &services, const CommandStreams &streams) {
             return runStatsCommand(arguments, ChoiceStats::fileURL(services.homeDirectory), streams);
         }},
    };
    return commands;
}

/// A usage line with its meaning beside it, or below where the line is too long.
QString helpLine(const QString &usage, const QString &meaning = {}) {
    constexpr int width = 36;
    if (meaning.isEmpty()) {
        return QStringLiteral("  %1\n").arg(usage);
    }
    const QString gap = usage.size() < width ? QString() : u'\n' + QString(width + 2, u' ');
    return QStringLiteral("  %1%2%3\n").arg(usage.leftJustified(gap.isEmpty() ? width : 0), gap, meaning);
}

QString help() {
    QString text = QStringLiteral("Quillory suggests a better wording while you write to customers in WhatsApp.\n\n"
                                  "Usage:\n") +
                   helpLine(QStringLiteral("quillory"), QStringLiteral("start Quillory"));
    for (const auto &[syntax, run] : allCommands()) {
        const QStringList usage = usageOf(syntax);
        for (qsizetype i = 0; i < usage.size(); ++i) {
            text += helpLine(usage[i], syntax.forms[i].meaning);
        }
    }
    return text +
           helpLine(QStringLiteral("quillory COMMAND --help"), QStringLiteral("show the arguments of a command")) +
           helpLine(QStringLiteral("quillory --version")) + helpLine(QStringLiteral("quillory --help")) +
           QString::fromLatin1(helpOnValues) + describeSettings() + QString::fromLatin1(helpEnding);
}

/// Qt's own options and those of session managers have one dash; ours have two, except for -h and -v.
bool isForQt(const QString &argument) {
    return argument.startsWith(u'-') && !argument.startsWith(QStringLiteral("--")) &&
           argument != QStringLiteral("-h") && argument != QStringLiteral("-v");
}

int refuse(const CommandStreams &streams, const QString &mistake) {
    streams.errors << "quillory: " << mistake.toStdString() << "; see quillory --help.\n";
    return exitStatus::misuse;
}
} // namespace

std::optional<int> runCommandLine(const QStringList &arguments, const CommandServices &services,
                                  const CommandStreams &streams) {
    if (arguments.isEmpty() || isForQt(arguments.constFirst())) {
        return std::nullopt;
    }
    QCommandLineParser parser; // what follows the command is for the command itself
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")});
    const QCommandLineOption askForHelp(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    parser.addOptions({version, askForHelp});
    if (!parser.parse(QStringList{QStringLiteral("quillory")} + arguments)) {
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
    const auto command =
        std::ranges::find(allCommands(), words.value(0), [](const NamedCommand &c) { return c.syntax.name; });
    if (command == allCommands().end()) {
        return refuse(streams, QStringLiteral("unknown command \"%1\"").arg(words.value(0)));
    }
    return command->run(words.mid(1), services, streams);
}

} // namespace quillory
