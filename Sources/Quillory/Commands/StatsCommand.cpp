// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/StatsCommand.h"

#include "Quillory/Records/ChoiceStats.h"
#include "Quillory/Text.h"

#include <QFile>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

using namespace Qt::StringLiterals;

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
    return seconds ? text::fixed(*seconds, 2) + u's' : u"-"_s;
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
    output << cell(u"Model"_s, width) << numberCell(u"Chosen"_s, 8) << numberCell(u"Shown"_s, 8)
           << numberCell(u"Median"_s, 9) << numberCell(u"90 %"_s, 9) << '\n';
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

int runStats(const CommandArguments &given, const CommandServices &services, const CommandStreams &streams) {
    const QString path = ChoiceStats::fileURL(services.accessModel()->process.homeDirectory());
    QFile file(path);
    if (file.exists() && !file.open(QIODevice::ReadOnly)) {
        return complain(streams, path + u" cannot be read"_s, exitStatus::failure);
    }
    const Choices choices = file.isOpen() ? choicesIn(file, streams.errors) : Choices{};
    if (given.has(u"json"_s)) {
        writeJSON(streams.output, choices, summary(choices.records));
        return exitStatus::success;
    }
    if (choices.records.empty()) {
        return complain(streams, u"no choices have been recorded yet"_s, exitStatus::failure);
    }
    writeTable(streams.output, summary(choices.records));
    return exitStatus::success;
}

} // namespace

const Command &statsCommand() {
    static const Command command{
        .name = u"stats"_s,
        .forms = {{{}, u"show how often each model's suggestions were chosen, and how long they took"_s}},
        .options = {{u"json"_s, u"Show the statistics as JSON."_s}},
        .run = runStats};
    return command;
}

} // namespace quillory
