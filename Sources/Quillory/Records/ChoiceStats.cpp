// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Records/ChoiceStats.h"

#include "Quillory/Records/FileLog.h"
#include "Quillory/Text.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringConverter>

#include <algorithm>

namespace quillory {

namespace {
QString secondsText(std::optional<double> seconds) {
    return seconds ? text::fixed(*seconds, 2) : QString();
}

std::optional<QString> decoded(const QByteArray &line) {
    QStringDecoder decode(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = decode(QByteArrayView(line));
    return decode.hasError() ? std::nullopt : std::optional(std::move(text));
}

std::optional<double> seconds(QStringView digits) {
    return digits.isEmpty() ? std::nullopt : std::optional(digits.toDouble());
}

/// The entries of a field of competitors, or absent when it is none. Each ends in "=" and its time or nothing.
std::optional<std::vector<ChoiceEntry>> competitorsIn(const QString &field) {
    static const QRegularExpression item(QStringLiteral(R"(\G(.*?)=(\d+\.\d\d)?(;|$))"));
    std::vector<ChoiceEntry> entries;
    qsizetype position = 0;
    bool isOpen = !field.isEmpty();
    while (isOpen) {
        const auto match = item.match(field, position);
        if (!match.hasMatch()) {
            return std::nullopt;
        }
        entries.push_back({match.captured(1), seconds(match.capturedView(2))});
        isOpen = match.capturedLength(3) > 0;
        position = match.capturedEnd();
    }
    return entries;
}
} // namespace

QString ChoiceStats::fileURL(const QString &homeDirectory) {
    return homeDirectory + QStringLiteral("/Library/Application Support/Quillory/choices.csv");
}

ChoiceStats::ChoiceStats(const QString &homeDirectory) : m_fileURL(fileURL(homeDirectory)) {
    QDir().mkpath(QFileInfo(m_fileURL).path());
}

void ChoiceStats::record(const ChoiceRecord &choice) const {
    QStringList others;
    for (const ChoiceEntry &competitor : choice.competitors) {
        others += competitor.model + u'=' + secondsText(competitor.elapsed);
    }
    const QStringList fields{QDateTime::currentDateTimeUtc().toString(Qt::ISODate), choice.chosen.model,
                             secondsText(choice.chosen.elapsed), others.join(u';')};
    FileLog::append(m_fileURL, (fields.join(u',') + u'\n').toUtf8());
    FileLog::log(QStringLiteral("choice recorded: ") + choice.chosen.model);
}

std::optional<ChoiceRecord> choiceRecord(const QByteArray &line) {
    const auto text = decoded(line);
    const qsizetype comma = text ? text->indexOf(u',') : -1;
    if (comma < 0 || !QDateTime::fromString(text->first(comma), Qt::ISODate).isValid()) {
        return std::nullopt;
    }
    static const QRegularExpression time(QStringLiteral(R"(,(\d+\.\d\d)?,)"));
    const QString fields = text->sliced(comma + 1);
    for (auto match = time.match(fields); match.hasMatch(); match = time.match(fields, match.capturedStart() + 1)) {
        auto competitors = competitorsIn(fields.sliced(match.capturedEnd()));
        if (competitors) {
            return ChoiceRecord{{fields.first(match.capturedStart()), seconds(match.capturedView(1))},
                                *std::move(competitors)};
        }
    }
    return std::nullopt;
}

ChoiceSummary summary(const std::vector<ChoiceRecord> &records) {
    ChoiceSummary models;
    const auto count = [&models](const ChoiceEntry &entry) -> ModelChoices & {
        ModelChoices &model = models[entry.model];
        ++model.shown;
        if (entry.elapsed) {
            model.times.push_back(*entry.elapsed);
        }
        return model;
    };
    for (const ChoiceRecord &record : records) {
        ModelChoices &winner = count(record.chosen);
        ++winner.chosen;
        for (const ChoiceEntry &other : record.competitors) {
            ++winner.against[other.model].won;
            ++count(other).against[record.chosen.model].lost;
        }
    }
    for (auto &[model, choices] : models) {
        std::ranges::sort(choices.times);
    }
    return models;
}

std::optional<double> percentile(const std::vector<double> &ascending, int percent) {
    if (ascending.empty()) {
        return std::nullopt;
    }
    const std::size_t rank = (ascending.size() * static_cast<std::size_t>(percent) + 99) / 100;
    return ascending[std::max<std::size_t>(rank, 1) - 1];
}

} // namespace quillory
