// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/CommandLine.h"

#include "Quillory/ChoiceStats.h"
#include "Quillory/DefaultsCommand.h"
#include "Quillory/InspectCommand.h"
#include "Quillory/RewriteCommand.h"
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
  quillory inspect [--json] [--wait SECONDS]
                                      show what is seen of the message box that has the focus, and what would be
                                      sent; --wait leaves time to click into it
  quillory rewrite [--tone TONE] [--json] [TEXT]
                                      rewrite a text, or what stands on standard input
  quillory stats [--json]             show how often each model's suggestion was chosen, and its times
  quillory --version
  quillory --help

A VALUE of - is read from standard input. The API key can be given in that way only, because the
arguments of a program can be seen by others:
  quillory defaults write openRouterAPIKey - < FILE

Settings:
)";

constexpr auto helpEnding = R"(
Environment:
  OPENROUTER_API_KEY       the API key, when the settings have none
  QUILLORY_MODEL_SERVICE   address of another service that speaks the same protocol; its scheme, host and port
                           count, the path stays /api/v1/chat/completions

Exit status: 0 done, 1 it failed or there is nothing to show, 2 wrong arguments.
)";
} // namespace

std::optional<int> runCommandLine(const QStringList &arguments, const CommandServices &services,
                                  const CommandStreams &streams) {
    if (arguments.isEmpty()) {
        return std::nullopt;
    }
    const QString &command = arguments.first();
    if (command == QStringLiteral("defaults")) {
        return runDefaultsCommand(arguments.sliced(1), services.openUserDefaults(), streams);
    }
    if (command == QStringLiteral("stats")) {
        return runStatsCommand(arguments.sliced(1), ChoiceStats::fileURL(services.homeDirectory), streams);
    }
    if (command == QStringLiteral("rewrite")) {
        const auto installed = services.install();
        return runRewriteCommand(arguments.sliced(1), streams);
    }
    if (command == QStringLiteral("inspect")) {
        return runInspectCommand(arguments.sliced(1), services, streams);
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
