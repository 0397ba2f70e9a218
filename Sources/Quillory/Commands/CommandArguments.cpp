// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/CommandArguments.h"

#include <QStringConverter>

#include <istream>
#include <ostream>
#include <string>

using namespace Qt::StringLiterals;

namespace quillory {

QStringList usageOf(const Command &command) {
    QString start = u"quillory "_s + command.name;
    for (const QCommandLineOption &option : command.options) {
        const QString value = option.valueName().isEmpty() ? QString() : u' ' + option.valueName();
        start += u" [--"_s + option.names().constFirst() + value + u']';
    }
    QStringList usage;
    for (const CommandForm &form : command.forms) {
        usage.append(form.words.isEmpty() ? start : start + u' ' + form.words);
    }
    return usage;
}

QString mistakeIn(const QCommandLineParser &parser) {
    QString text = parser.errorText();
    text.chop(text.endsWith(u'.') ? 1 : 0);
    return text.left(1).toLower() + text.mid(1);
}

CommandArguments::CommandArguments(const Command &command, const QStringList &given, const CommandStreams &streams)
    : m_command(command), m_streams(streams) {
    m_parser.addOptions(command.options);
    m_parser.addOption({{u"h"_s, u"help"_s}, u"Show the arguments of the command."_s});
    if (command.isPlainAfterFirstWord) {
        m_parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    }
    if (!m_parser.parse(QStringList{command.name} + given)) {
        m_status = refuse(mistakeIn(m_parser));
    } else if (m_parser.isSet(u"help"_s)) {
        m_status = showHelp();
    } else if (words().size() > command.mostWords) {
        m_status = refuse();
    }
}

int CommandArguments::refuse(const QString &mistake) const {
    const QStringList usage = usageOf(m_command);
    QString all = usage.mid(0, usage.size() - 1).join(u", "_s);
    all += (all.isEmpty() ? QString() : u" or "_s) + usage.constLast();
    const QString start = mistake.isEmpty() ? QString() : mistake + u"; "_s;
    return complain(m_streams, start + u"use "_s + all, exitStatus::misuse);
}

int CommandArguments::showHelp() const {
    QString help;
    const QStringList usage = usageOf(m_command);
    for (qsizetype i = 0; i < usage.size(); ++i) {
        help += u"%1\n    %2\n"_s.arg(usage[i], m_command.forms[i].meaning);
    }
    // Qt's own usage line knows neither the program's name nor the forms.
    const QString generated = m_parser.helpText();
    m_streams.output << (help + generated.sliced(generated.indexOf(u'\n') + 1)).toStdString();
    return exitStatus::success;
}

int complain(const CommandStreams &streams, const QString &sentence, int status) {
    streams.errors << "quillory: " << sentence.toStdString() << ".\n";
    return status;
}

std::optional<QString> readText(std::istream &input) {
    constexpr std::size_t longest = 1 << 20;
    std::string bytes(longest + 1, '\0');
    input.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(input.gcount()));
    QStringDecoder decode(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = decode(QByteArrayView(bytes));
    return decode.hasError() || bytes.size() > longest ? std::nullopt : std::optional(std::move(text));
}

} // namespace quillory
