// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/CommandArguments.h"

#include <QStringConverter>

#include <istream>
#include <ostream>
#include <string>

namespace quillory {

QStringList usageOf(const CommandSyntax &syntax) {
    QString start = QStringLiteral("quillory ") + syntax.name;
    for (const QCommandLineOption &option : syntax.options) {
        const QString value = option.valueName().isEmpty() ? QString() : u' ' + option.valueName();
        start += QStringLiteral(" [--") + option.names().constFirst() + value + u']';
    }
    QStringList usage;
    for (const CommandForm &form : syntax.forms) {
        usage.append(form.words.isEmpty() ? start : start + u' ' + form.words);
    }
    return usage;
}

QString mistakeIn(const QCommandLineParser &parser) {
    QString text = parser.errorText();
    text.chop(text.endsWith(u'.') ? 1 : 0);
    return text.left(1).toLower() + text.mid(1);
}

CommandArguments::CommandArguments(const CommandSyntax &syntax, const QStringList &given, const CommandStreams &streams)
    : m_syntax(syntax), m_streams(streams) {
    m_parser.addOptions(syntax.options);
    m_parser.addOption(
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show the arguments of the command.")});
    if (syntax.isPlainAfterFirstWord) {
        m_parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    }
    if (!m_parser.parse(QStringList{syntax.name} + given)) {
        m_status = refuse(mistakeIn(m_parser));
    } else if (m_parser.isSet(QStringLiteral("help"))) {
        m_status = showHelp();
    } else if (words().size() > syntax.mostWords) {
        m_status = refuse();
    }
}

int CommandArguments::refuse(const QString &mistake) const {
    const QStringList usage = usageOf(m_syntax);
    QString all = usage.mid(0, usage.size() - 1).join(QStringLiteral(", "));
    all += (all.isEmpty() ? QString() : QStringLiteral(" or ")) + usage.constLast();
    m_streams.errors << "quillory: " << mistake.toStdString() << (mistake.isEmpty() ? "" : "; ") << "use "
                     << all.toStdString() << ".\n";
    return exitStatus::misuse;
}

int CommandArguments::showHelp() const {
    QString help;
    const QStringList usage = usageOf(m_syntax);
    for (qsizetype i = 0; i < usage.size(); ++i) {
        help += QStringLiteral("%1\n    %2\n").arg(usage[i], m_syntax.forms[i].meaning);
    }
    // Qt's own usage line knows neither the program's name nor the forms.
    const QString generated = m_parser.helpText();
    m_streams.output << (help + generated.sliced(generated.indexOf(u'\n') + 1)).toStdString();
    return exitStatus::success;
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
