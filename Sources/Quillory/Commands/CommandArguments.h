// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandLine.h"

#include <QCommandLineParser>

namespace quillory {

class CommandArguments;

/// One way to call a command: the words that it takes, such as "read [KEY]", and what it does with them.
struct CommandForm {
    QString words;
    QString meaning;
};

/// A command. Its help and its parser are made from what stands here.
struct Command {
    QString name;
    QList<CommandForm> forms;
    QList<QCommandLineOption> options;
    qsizetype mostWords = 0;
    /// Whether everything after the first word is a plain word, even if it looks like an option.
    bool isPlainAfterFirstWord = false;
    /// Does what was asked and gives the exit status.
    int (*run)(const CommandArguments &given, const CommandServices &services, const CommandStreams &streams) = nullptr;
};

/// A usage line for each form of a command: "quillory rewrite [--tone TONE] [--json] [TEXT]".
[[nodiscard]] QStringList usageOf(const Command &command);

/// Why a parser failed, as a sentence without its full stop.
[[nodiscard]] QString mistakeIn(const QCommandLineParser &parser);

/// The arguments of one call of a command.
class CommandArguments {
  public:
    /// Prints the help if the arguments ask for it, or what is wrong with them.
    CommandArguments(const Command &command, const QStringList &given, const CommandStreams &streams);

    /// The exit status in those two cases; absent when the command is to run.
    [[nodiscard]] std::optional<int> status() const { return m_status; }
    [[nodiscard]] bool has(const QString &option) const { return m_parser.isSet(option); }
    /// Empty when the option was not given.
    [[nodiscard]] QString value(const QString &option) const { return m_parser.value(option); }
    [[nodiscard]] QStringList words() const { return m_parser.positionalArguments(); }
    /// Prints a mistake, given as a sentence without its full stop, and the usage. Returns the exit status.
    int refuse(const QString &mistake = {}) const;

  private:
    int showHelp() const;

    const Command &m_command;
    const CommandStreams &m_streams;
    QCommandLineParser m_parser;
    std::optional<int> m_status;
};

/// Prints a sentence, given without its full stop, to standard error. Returns the status.
int complain(const CommandStreams &streams, const QString &sentence, int status);

/// The text on standard input; absent when it is not UTF-8 or longer than a megabyte.
[[nodiscard]] std::optional<QString> readText(std::istream &input);

} // namespace quillory
