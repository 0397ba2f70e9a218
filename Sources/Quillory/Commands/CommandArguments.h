// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandLine.h"

#include <QCommandLineParser>

namespace quillory {

/// One way to call a command: the words that it takes, such as "read [KEY]", and what comes of it.
struct CommandForm {
    QString words;
    QString meaning;
};

/// What a command is called and takes. Its help and the reading of its arguments both come from this.
struct CommandSyntax {
    QString name;
    QList<CommandForm> forms;
    QList<QCommandLineOption> options;
    qsizetype mostWords = 0;
    /// Whether all that follows the first word is a word, also what looks like an option.
    bool isPlainAfterFirstWord = false;
};

/// How each form of a command is written: "quillory rewrite [--tone TONE] [--json] [TEXT]".
[[nodiscard]] QStringList usageOf(const CommandSyntax &syntax);

/// What made a parser fail, as a sentence without its full stop.
[[nodiscard]] QString mistakeIn(const QCommandLineParser &parser);

/// The arguments of one call of a command.
class CommandArguments {
  public:
    /// Answers at once what is no work for the command: a question for help, or arguments that it does not take.
    CommandArguments(const CommandSyntax &syntax, const QStringList &given, const CommandStreams &streams);

    /// The exit status where that has happened, so that nothing is left to be done.
    [[nodiscard]] std::optional<int> status() const { return m_status; }
    [[nodiscard]] bool has(const QString &option) const { return m_parser.isSet(option); }
    /// Empty when the option was not given.
    [[nodiscard]] QString value(const QString &option) const { return m_parser.value(option); }
    [[nodiscard]] QStringList words() const { return m_parser.positionalArguments(); }
    /// Says how the command is called, after what is wrong, a sentence without its full stop. Gives the exit status.
    int refuse(const QString &mistake = {}) const;

  private:
    int showHelp() const;

    const CommandSyntax &m_syntax;
    const CommandStreams &m_streams;
    QCommandLineParser m_parser;
    std::optional<int> m_status;
};

/// What stands on standard input. Absent when that is no UTF-8, or longer than a megabyte.
[[nodiscard]] std::optional<QString> readText(std::istream &input);

} // namespace quillory
