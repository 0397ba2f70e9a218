// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <map>
#include <optional>
#include <vector>

/// Reading "choices.csv" back: its records and what they say about the models. Pure functions of values.
namespace quillory {

/// A model's part in one choice.
struct ChoiceEntry {
    QString model;
    /// Seconds from its request to its complete answer; absent while it was not complete.
    std::optional<double> elapsed;
    friend bool operator==(const ChoiceEntry &, const ChoiceEntry &) = default;
};

/// One accepted suggestion.
struct ChoiceRecord {
    ChoiceEntry chosen;
    std::vector<ChoiceEntry> competitors;
    friend bool operator==(const ChoiceRecord &, const ChoiceRecord &) = default;
};

/// The record on a line (without its line break), or absent when it is damaged. Model identifiers are not escaped in
/// the file: one that holds "," or ";" is told from the fields by what must stand next to it, a time with two decimals;
/// where several readings are possible, the one with the shortest winner is taken.
[[nodiscard]] std::optional<ChoiceRecord> choiceRecord(const QByteArray &line);

/// How a model fared.
struct ModelChoices {
    /// Choices that it took part in, alone or against others.
    int shown = 0;
    int chosen = 0;
    struct Against {
        int won = 0;
        /// The other was chosen.
        int lost = 0;
    };
    std::map<QString, Against> against;
    /// The times of its complete answers, in seconds, ascending.
    std::vector<double> times;
};
using ChoiceSummary = std::map<QString, ModelChoices>;
[[nodiscard]] ChoiceSummary summary(const std::vector<ChoiceRecord> &records);

/// The smallest of ascending values that so many percent of them do not exceed; absent when there are none.
[[nodiscard]] std::optional<double> percentile(const std::vector<double> &ascending, int percent);

} // namespace quillory
