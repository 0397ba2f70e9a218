// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/StatsCommand.h"

#include "Quillory/Records/ChoiceRecords.h"
#include "Quillory/Text.h"

#include <QFile>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

namespace quillory {

namespace {

// Model identifiers have about fifty characters; a longer line than this is no record.
constexpr qint64 longestLine = 4 * 1024;
constexpr qsizetype shownDamage = 60;
constexpr int slowPercent = 90;

struct Choices {
    std::vector<ChoiceRecord> records;
    std::vector<int> damagedLines;
};

// The beginning of a damaged line, safe to show on a terminal.
std::string excerpt(const QByteArray &line) {
    QString text = QString::fromUtf8(line).left(shownDamage);
    std::ranges::replace_if(
        text, [](QChar c) { return !c.isPrint(); }, QChar(u'?'));
    return text.toStdString();
}

// Skips the rest of a line of which only the beginning was read.
void skipLine(QFile &file) {
    while (!file.atEnd() && !file.readLine(longestLine).endsWith('\n')) {
    }
}

Choices choicesIn(QFile &file, std::ostream &errors) {
    Choices choices;
    for (int number = 1; !file.atEnd(); ++number) {
        QByteArray line = file.readLine(longestLine);
        if (line.endsWith('\n')) {
            line.chop(1);
        } else {
            skipLine(file);
        }
        if (auto record = choiceRecord(line)) {
            choices.records.push_back(*std::move(record));
            continue;
        }
        choices.damagedLines.push_back(number);
        errors << "quillory: line " << number << " is damaged and not counted: " << excerpt(line) << '\n';
    }
    return choices;
}

std::string cell(const QString &text, qsizetype width) {
    return text.leftJustified(width).toStdString();
}

std::string numberCell(const QString &text, qsizetype width) {
    return text.rightJustified(width).toStdString();
}

QString secondsText(std::optional<double> seconds) {
    return seconds ? text::fixed(*seconds, 2) + u's' : QStringLiteral("-");
}

void writeRow(std::ostream &output, const QString &model, qsizetype width, const ModelChoices &choices) {
    output << cell(model, width) << numberCell(QString::number(choices.chosen), 8)
           << numberCell(QString::number(choices.shown), 8) << numberCell(secondsText(percentile(choices.times, 50)), 9)
           << numberCell(secondsText(percentile(choices.times, slowPercent)), 9) << '\n';
    for (const auto &[rival, result] : choices.against) {
        output << "  chosen " << result.won << " of " << result.won + result.lost << " times against "
               << rival.toStdString() << '\n';
    }
}

void writeTable(std::ostream &output, const ChoiceSummary &models) {
    qsizetype width = 24;
    for (const auto &[model, choices] : models) {
        width = std::max(width, model.size());
    }
    output << cell(QStringLiteral("Model"), width) << numberCell(QStringLiteral("Chosen"), 8)
           << numberCell(QStringLiteral("Shown"), 8) << numberCell(QStringLiteral("Median"), 9)
           << numberCell(QStringLiteral("90 %"), 9) << '\n';
    for (const auto &[model, choices] : models) {
        writeRow(output, model, width, choices);
    }
}

nlohmann::json secondsValue(std::optional<double> seconds) {
    return seconds ? nlohmann::json(*seconds) : nlohmann::json();
}

nlohmann::json modelValue(const QString &model, const ModelChoices &choices) {
    nlohmann::json against = nlohmann::json::array();
    for (const auto &[rival, result] : choices.against) {
        against.push_back({{"model", rival.toStdString()}, {"won", result.won}, {"lost", result.lost}});
    }
    return {{"model", model.toStdString()},
            {"chosen", choices.chosen},
            {"shown", choices.shown},
            {"medianSeconds", secondsValue(percentile(choices.times, 50))},
            {"percentile90Seconds", secondsValue(percentile(choices.times, slowPercent))},
            {"against", std::move(against)}};
}

void writeJSON(std::ostream &output, const Choices &choices, const ChoiceSummary &models) {
    nlohmann::json list = nlohmann::json::array();
    for (const auto &[model, fared] : models) {
        list.push_back(modelValue(model, fared));
    }
    const nlohmann::json document{
        {"records", choices.records.size()}, {"damagedLines", choices.damagedLines}, {"models", std::move(list)}};
    output << document.dump(2) << '\n';
}

} // namespace

const CommandSyntax &statsSyntax() {
    static const CommandSyntax syntax{
        .name = QStringLiteral("stats"),
        .forms = {{{}, QStringLiteral("show how often each model's suggestions were chosen, and how long they took")}},
        .options = {{QStringLiteral("json"), QStringLiteral("Show the statistics as JSON.")}}};
    return syntax;
}

int runStatsCommand(const QStringList &arguments, const QString &path, const CommandStreams &streams) {
    const CommandArguments given(statsSyntax(), arguments, streams);
    if (given.status()) {
        return *given.status();
    }
    QFile file(path);
    if (file.exists() && !file.open(QIODevice::ReadOnly)) {
        streams.errors << "quillory: " << path.toStdString() << " cannot be read.\n";
        return exitStatus::failure;
    }
    const Choices choices = file.isOpen() ? choicesIn(file, streams.errors) : Choices{};
    if (given.has(QStringLiteral("json"))) {
        writeJSON(streams.output, choices, summary(choices.records));
        return exitStatus::success;
    }
    if (choices.records.empty()) {
        streams.errors << "quillory: no choices have been recorded yet.\n";
        return exitStatus::failure;
    }
    writeTable(streams.output, summary(choices.records));
    return exitStatus::success;
}

} // namespace quillory
