// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/CommandLine.h"

#include "Quillory/ChoiceStats.h"
#include "Quillory/DefaultsCommand.h"
#include "Quillory/DoctorCommand.h"
#include "Quillory/InspectCommand.h"
#include "Quillory/RewriteCommand.h"
#include "Quillory/SetupCommand.h"
#include "Quillory/StatsCommand.h"

#include <ostream>

namespace quillory {

namespace {
constexpr auto help = R"(Quillory suggests a better wording while you write to customers in WhatsApp.

Usage:
  quillory                            start it
  quillory defaults read [KEY]        show the settings, or one of them
  quillory defaults write KEY VALUE   change a setting; it counts at once, also in a running program
  quillory defaults delete KEY        go back to a setting's default
  quillory setup [--terminal]         set it up: what the program needs, and the API key
  quillory doctor [--fix] [--json]    check what the program needs and say what to do; --fix does what is safe
  quillory autostart on|off           start it at every login, or no longer
  quillory inspect [--json] [--wait SECONDS]
                                      show what is seen of the message box that has the focus, and what would be
                                      sent; --wait leaves time to click into it
  quillory rewrite [--tone TONE] [--json] [TEXT]
                                      rewrite a text, or what stands on standard input
  quillory stats [--json]             show how often each model's suggestion was chosen, and its times
  quillory --version
  quillory --help

A VALUE of - is read from standard input. The API key is never given as an argument, because other programs
can see those. quillory setup asks for it; or:
  quillory defaults write openRouterAPIKey - < FILE

Settings:
)";

constexpr auto helpEnding = R"(
Environment:
  OPENROUTER_API_KEY       the API key, when the settings have none
  QUILLORY_MODEL_SERVICE   address of another service that speaks the same protocol; its scheme, host and port
                           count, the path stays /api/v1/chat/completions
  QUILLORY_UPDATE_FEED     address of another server that announces versions; the path stays /version.json

Exit status: 0 done, 1 it failed or there is nothing to show, 2 wrong arguments.
)";

std::optional<int> runNamedCommand(const QString &command, const QStringList &arguments,
                                   const CommandServices &services, const CommandStreams &streams) {
    const std::pair<QLatin1StringView, std::function<int()>> commands[]{
        {QLatin1StringView("autostart"), [&] { return runAutostartCommand(arguments, services, streams); }},
        {QLatin1StringView("defaults"),
         [&] { return runDefaultsCommand(arguments, services.openUserDefaults(), streams); }},
        {QLatin1StringView("doctor"), [&] { return runDoctorCommand(arguments, services, streams); }},
        {QLatin1StringView("inspect"), [&] { return runInspectCommand(arguments, services, streams); }},
        {QLatin1StringView("rewrite"),
         [&] {
             const auto installed = services.install();
             return runRewriteCommand(arguments, streams);
         }},
        {QLatin1StringView("setup"), [&] { return runSetupCommand(arguments, services, streams); }},
        {QLatin1StringView("stats"),
         [&] { return runStatsCommand(arguments, ChoiceStats::fileURL(services.homeDirectory), streams); }},
    };
    for (const auto &[name, run] : commands) {
        if (command == name) {
            return run();
        }
    }
    return std::nullopt;
}
} // namespace

std::optional<int> runCommandLine(const QStringList &arguments, const CommandServices &services,
                                  const CommandStreams &streams) {
    if (arguments.isEmpty()) {
        return std::nullopt;
    }
    const QString &command = arguments.first();
    if (const auto status = runNamedCommand(command, arguments.sliced(1), services, streams)) {
        return status;
    }
    if (command == QStringLiteral("--version")) {
        streams.output << "quillory " << QUILLORY_VERSION << '\n';
        return exitStatus::success;
    }
    if (command == QStringLiteral("--help") || command == QStringLiteral("-h")) {
        streams.output << help << describeSettings().toStdString() << helpEnding;
        return exitStatus::success;
    }
    if (command.startsWith(u'-') && !command.startsWith(QStringLiteral("--"))) {
        return std::nullopt;
    }
    streams.errors << "quillory: \"" << command.toStdString()
                   << "\" is not something it can do; quillory --help says what is.\n";
    return exitStatus::misuse;
}

} // namespace quillory
